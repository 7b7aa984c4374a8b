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

    // "section/key=value;...": stores each entry (one without a section under `section`), or
    // names those the store does not hold.
    void Seed(const QString& entries, const QString& section = {}) {
        for (const QString& e : entries.split(';', Qt::SkipEmptyParts))
            t.Put(Section(e, section), Key(e), e.section('=', 1));
    }
    std::string NotHeld(const QString& entries) {
        QStringList wrong;
        for (const QString& e : entries.split(';', Qt::SkipEmptyParts))
            if (t.Get(Section(e, {}), Key(e)) != e.section('=', 1))
                wrong << e.section('=', 0, 0) + "=" + t.Get(Section(e, {}), Key(e));
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
    static QString Section(const QString& entry, const QString& otherwise) {
        const QString name = entry.section('=', 0, 0);
        return name.contains('/') ? name.section('/', 0, 0) : otherwise;
    }
    static QString Key(const QString& entry) { return entry.section('=', 0, 0).section('/', -1); }
};
