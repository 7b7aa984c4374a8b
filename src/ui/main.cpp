#include "platform/Services.h"
#include "platform/posix/Heap.h"
#include "platform/posix/PosixProcessLauncher.h"
#include "platform/posix/SteadyClock.h"
#include "platform/qt/CoverageCounters.h"
#include "platform/qt/QtMessageBoxes.h"
#include "platform/qt/QtServices.h"
#include "platform/qt/SingleInstance.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11WindowServices.h"
#include "server/AppState.h"
#include "settings/IniSettingsStore.h"
#include "settings/ProjectInfo.h"
#include "ui/Hostwarden.h"
#include "ui/Setup.h"
#include "ui/WindowRegistry.h"
#include "ui/server/SetupHandlers.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QScreen>

namespace {

// Our windows are X11 clients whenever there is an X display, on a Wayland desktop too
// (Xwayland): the console we type into is an X11 window, and the close walk and the focus
// checks must see our own windows in the same window system as the console. Wayland only
// when the X display cannot be reached.
class WindowSystemChoice {
public:
    WindowSystemChoice()
        : asked_(qgetenv(kVariable)), wasSet_(qEnvironmentVariableIsSet(kVariable)) {
        if (!qEnvironmentVariableIsEmpty("DISPLAY"))
            qputenv(kVariable, "xcb;wayland");
    }
    // The programs we start (the server) choose for themselves.
    void Forget() const { wasSet_ ? qputenv(kVariable, asked_) : qunsetenv(kVariable); }

private:
    static constexpr const char* kVariable = "QT_QPA_PLATFORM";
    QByteArray asked_;
    bool wasSet_;
};

} // namespace

int main(int argc, char** argv) {
    WriteCoverageCountersOnTerminate();
    KeepFreedHeap();
    const WindowSystemChoice windowSystem;
    QApplication application(argc, argv);
    windowSystem.Forget();
    QApplication::setApplicationName(QStringLiteral("Hostwarden"));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 7));
    QApplication::setWindowIcon(HostwardenIcon());

    X11WindowServices windows;
    WindowRegistry forms;
    // A second start brings the running window forward and ends before it reads or
    // writes any settings.
    SingleInstance instance([&] {
        QWidget* front = QApplication::activeModalWidget();
        if (!front)
            front = forms.MainWindow ? static_cast<QWidget*>(forms.MainWindow) : forms.Setup;
        if (!front)
            return;
        front->showNormal();
        front->raise();
        front->activateWindow();
        windows.ActivateWindow(static_cast<WindowHandle>(front->winId()));
    });
    if (!instance.Claim())
        return 0;

    QtMessageBoxes messages;
    IniSettingsStore store;
    if (const auto error = store.loadError(kAppName)) {
        messages.Show({SettingsLoadErrorMessage(*error), QStringLiteral("Settings Error"),
                       MsgButtons::OK, MsgIcon::Critical, MsgDefault::First});
        return 1;
    }
    store.setErrorHandler([&messages](const QString& message) {
        messages.Show({message, QStringLiteral("Settings Error"), MsgButtons::OK, MsgIcon::Critical,
                       MsgDefault::First});
    });

    QtBeeper beeper;
    ImmediateEnd end;
    QtRandom random;
    PosixProcessLauncher launcher;
    X11Keyboard keyboard;
    SteadyClock clock;
    Services services{store, messages, beeper, end, random, launcher, windows, keyboard, clock};

    AppState state;
    auto* setup = new Setup(state, forms, services);
    forms.Setup = setup;
    Setup_Form_Load(*setup);
    ShowSetup(*setup); // a first run waits there for the game directory
    return application.exec();
}
