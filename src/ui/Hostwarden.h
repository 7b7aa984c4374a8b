#pragma once

#include "server/AppState.h"

#include <QTimer>
#include <QWidget>

#include <array>
#include <cstdint>
#include <memory>

namespace Ui {
class Hostwarden;
}
class AutoMessages;
class MainWindowMessageHost;
class ModPushKeys;
class QButtonGroup;
class QLineEdit;
struct Services;

// The main window. It creates its controls and connects their signals to the
// handlers; the handlers themselves live with the subsystem they belong to.
class Hostwarden : public QWidget {
    Q_OBJECT
public:
    Hostwarden(AppState& state, Services& services, QWidget* parent = nullptr);
    ~Hostwarden() override;

    AppState& app;
    Services& services;
    std::unique_ptr<Ui::Hostwarden> ui;
    std::array<QLineEdit*, 4> TXTMess{};
    QButtonGroup* gameType = nullptr;

    QTimer Timer1;
    QTimer TMRAdds;
    QTimer TMRSend;

    std::unique_ptr<ModPushKeys> keys;
    std::unique_ptr<MainWindowMessageHost> messageHost;
    // The automatic messages: the hidden queue LSTBuff, the line being typed and the
    // launch result ServerHandle live there.
    std::unique_ptr<AutoMessages> automation;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Connect();
};
