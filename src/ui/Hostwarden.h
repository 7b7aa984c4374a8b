#pragma once

#include "options/OptionsText.h"
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
class QIcon;
class QLineEdit;
struct Services;
struct WindowRegistry;

// The program's icon, 16 × 16 and 32 × 32.
QIcon HostwardenIcon();

// The main window. It creates its controls and connects their signals to the handlers
// under ui/<subsystem>/; the handlers reach the controls through `ui`.
class Hostwarden : public QWidget {
    Q_OBJECT
public:
    Hostwarden(AppState& state, WindowRegistry& windows, Services& services,
               QWidget* parent = nullptr);
    ~Hostwarden() override;

    AppState& app;
    WindowRegistry& forms;
    Services& services;
    std::unique_ptr<Ui::Hostwarden> ui;
    // The four message boxes TXTMess(0) to TXTMess(3).
    std::array<QLineEdit*, 4> TXTMess{};
    // The exact text behind TXTSTat, as it goes into dedicated_server.txt.
    OptionsTextModel optionsText;

    // Milliseconds between typed characters: the interval of TMRSend.
    int TextRate() const;
    void SetTextRate(int ms);

    // The automatic messages, read-only: the hidden queue LSTBuff, the line being typed
    // and the launch result ServerHandle.
    const AutoMessages& Automation() const;
    // A launch begins, and ends with a started server (non-zero) or none.
    void ForgetServer();
    void ServerLaunched(std::uint32_t handle);
    // The launch started `process` as the server: watch it end, and its console appear.
    void WatchServer(std::int64_t process);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    friend class MainWindowMessageHost;
    void Connect();

    // The window's timers are its children, named as the controls they stand for.
    QTimer Timer1;
    QTimer TMRAdds;
    QTimer TMRSend;
    // Fires once, a while after a launch, to see that the console has appeared.
    QTimer ConsoleWatch;
    std::unique_ptr<ModPushKeys> keys_;
    std::unique_ptr<MainWindowMessageHost> messageHost_;
    std::unique_ptr<AutoMessages> automation_;
};
