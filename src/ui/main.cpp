#include "platform/Services.h"
#include "platform/posix/PosixProcessLauncher.h"
#include "platform/posix/SteadyClock.h"
#include "platform/qt/QtMessageBoxes.h"
#include "platform/qt/QtServices.h"
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

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Hostwarden"));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 7));
    QApplication::setWindowIcon(HostwardenIcon());

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
    X11WindowServices windows;
    X11Keyboard keyboard;
    SteadyClock clock;
    Services services{store, messages, beeper, end, random, launcher, windows, keyboard, clock};

    AppState state;
    WindowRegistry forms;
    auto* setup = new Setup(state, forms, services);
    forms.Setup = setup;
    Setup_Form_Load(*setup);
    if (forms.Setup) {
        // First run: the Setup window waits for the game directory.
        setup->move(setup->screen()->availableGeometry().center() - setup->rect().center());
        setup->show();
    }
    return application.exec();
}
