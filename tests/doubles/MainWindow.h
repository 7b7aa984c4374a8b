#pragma once

#include "TestServices.h"

#include "automation/AutoMessages.h"
#include "settings/ServerConfig.h"
#include "ui/Hostwarden.h"
#include "ui/WindowRegistry.h"
#include "ui/options/OptionsHandlers.h"
#include "ui/server/StartupHandlers.h"
#include "ui_Hostwarden.h"

#include <QTimer>

#include <memory>
#include <string>

// A main window over doubles, loaded the way start-up loads it: seed the store, then Load().
struct MainWindow {
    TestServices t;
    AppState app;
    WindowRegistry forms;
    std::unique_ptr<Hostwarden> w;

    MainWindow() {
        app.AppName = kAppName;
        t.windows.mainWindow = 1;
    }

    void SeedFirstRun() {
        CreateDefaultConfig(t.store, kAppName);
        t.Put("Startup", "HasRunSetup", "1");
    }

    // "section/key=value;...": stores each entry, or lists those the store does not hold.
    // An entry without a section goes to `section`.
    void Seed(const QString& entries, const QString& section = {}) {
        for (const auto& [where, key, value] : Split(entries, section))
            t.Put(where, key, value);
    }
    std::string NotHeld(const QString& entries) {
        QStringList wrong;
        for (const auto& [where, key, value] : Split(entries, {}))
            if (t.Get(where, key) != value)
                wrong << where + "/" + key + "=" + t.Get(where, key);
        return wrong.join(';').toStdString();
    }

    Hostwarden& Load() {
        w = std::make_unique<Hostwarden>(app, forms, t.services);
        Hostwarden_Form_Load(*w);
        return *w;
    }

    // A first run's main window, as the operator first sees it.
    MainWindow& Start() {
        SeedFirstRun();
        Load();
        return *this;
    }

    Ui::Hostwarden& ui() { return *w->ui; }
    QTimer* timer(const char* name) { return w->findChild<QTimer*>(QLatin1String(name)); }
    QString Text() const { return OptionsText(*w); }
    QStringList Maps() const { return MapList(*w); }

private:
    static QList<std::array<QString, 3>> Split(const QString& entries, const QString& section) {
        QList<std::array<QString, 3>> split;
        for (const QString& entry : entries.split(';', Qt::SkipEmptyParts)) {
            const QString name = entry.section('=', 0, 0);
            split.append({name.contains('/') ? name.section('/', 0, 0) : section,
                          name.section('/', -1), entry.section('=', 1)});
        }
        return split;
    }
};
