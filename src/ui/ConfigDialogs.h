#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class NewConf;
class CopyConfig;
} // namespace Ui
class Hostwarden;

// "Name?": the name of a new configuration.
class NewConf : public QWidget {
    Q_OBJECT
public:
    explicit NewConf(Hostwarden& main);
    ~NewConf() override;

    Hostwarden& main;
    std::unique_ptr<Ui::NewConf> ui;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
};

// "Copy <name> to:": the name of a copy of the configuration shown in the list.
class CopyConfig : public QWidget {
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
    void closeEvent(QCloseEvent* event) override;
};
