#pragma once

#include "ui/ButtonsOnlyWindow.h"

#include <memory>

namespace Ui {
class NewConf;
class CopyConfig;
} // namespace Ui
class Hostwarden;

// "Name?": the name of a new configuration.
class NewConf : public ButtonsOnlyWindow {
    Q_OBJECT
public:
    explicit NewConf(Hostwarden& main);
    ~NewConf() override;

    Hostwarden& main;
    std::unique_ptr<Ui::NewConf> ui;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

// "Copy <name> to:": the name of a copy of the configuration shown in the list.
class CopyConfig : public ButtonsOnlyWindow {
    Q_OBJECT
public:
    explicit CopyConfig(Hostwarden& main);
    ~CopyConfig() override;

    Hostwarden& main;
    std::unique_ptr<Ui::CopyConfig> ui;
    // The configuration being copied.
    QString SourceConf;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
