#pragma once

#include "TestServices.h"

#include "automation/AutoMessages.h"
#include "settings/ServerConfig.h"
#include "ui/Hostwarden.h"
#include "ui/WindowRegistry.h"
#include "ui/options/OptionsHandlers.h"
#include "ui/server/StartupHandlers.h"
#include "ui_Hostwarden.h"

#include <QListWidget>
#include <QTimer>

#include <memory>

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
};
