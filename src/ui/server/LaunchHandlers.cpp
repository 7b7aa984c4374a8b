#include "ui/server/LaunchHandlers.h"

#include "automation/Module2.h"
#include "platform/Beeper.h"
#include "platform/MessageBoxes.h"
#include "platform/ProcessEnd.h"
#include "platform/ProcessLauncher.h"
#include "platform/Services.h"
#include "server/StartProgram.h"
#include "ui/Hostwarden.h"
#include "ui/options/OptionsHandlers.h"
#include "ui/settings/ConfigHandlers.h"
#include "ui_Hostwarden.h"

namespace {

void ConfigError(Hostwarden& w, const QString& text) {
    w.services.messages.Show({text, QStringLiteral("Config Error"), MsgButtons::OK,
                              MsgIcon::Critical, MsgDefault::First});
}

} // namespace

QString ServerCommandLine(const Hostwarden& w) {
    return w.app.GameDir + w.app.ServerExe + QStringLiteral(" -dedicated ") + w.app.name;
}

void CMDLaunch_Click(Hostwarden& w) {
    auto& ui = *w.ui;
    w.ForgetServer();
    CloseWindowByTitle(w.services.windows, kServerWindowTitle);
    // A server started on a stale options file would not run what the operator sees.
    if (!Write_File(w))
        return;
    SaveConfig(w);

    QString commandLine = ServerCommandLine(w);
    // Quoted, a program path with blanks is started whole instead of being cut at its
    // first blank; the start takes the quotes off again.
    const QString program = w.app.GameDir + w.app.ServerExe;
    if (program.contains(QLatin1Char(' ')) && !program.contains(QLatin1Char('"')))
        commandLine =
            QLatin1Char('"') + program + QLatin1Char('"') + commandLine.mid(program.size());
    if (ui.CHKGameTracker->isChecked())
        commandLine += QStringLiteral(" -lanonly");
    if (ui.CHKPort->isChecked()) {
        const QString port = ui.TXTPort->text();
        if (port.isEmpty()) {
            ConfigError(w, QStringLiteral("You must specify a local port number to use"));
            return;
        }
        if (port.size() < 4) {
            ConfigError(w, QStringLiteral("Invalid Port"));
            return;
        }
        commandLine += QStringLiteral(" -port ") + port;
    }
    if (ui.TXTMod->text() != QLatin1String("None"))
        commandLine += QStringLiteral(" -mod ") + ui.TXTMod->text();

    std::int32_t fallback = 0;
    std::int32_t started = StartProgram(w.services.launcher, commandLine, 1, {}, &fallback);
    // When the whole-line start failed as well, nothing runs: say so rather than
    // take the server for launched.
    if (started <= 32 && fallback <= 32)
        started = 0;
    w.ServerLaunched(static_cast<std::uint32_t>(started));
    if (started != 0)
        w.WatchServer(w.services.launcher.StartedProcess());
    if (started == 0) {
        w.services.messages.Show({QStringLiteral("RedFaction Dedicated Server Filed to Launch"),
                                  QStringLiteral("Dedicated Server Error"), MsgButtons::OK,
                                  MsgIcon::None, MsgDefault::First});
        return;
    }
}

void CMDExit_Click(Hostwarden& w) {
    const QString title = QStringLiteral("Save and exit or just exit");
    const MsgAnswer go = w.services.messages.Show(
        {QStringLiteral("This will end the Hostwarden and Red Faction Dedicated Server "
                        "Sessions, Do you wish to continue?"),
         title, MsgButtons::YesNo, MsgIcon::Information, MsgDefault::Second});
    if (go != MsgAnswer::Yes)
        return;
    w.services.beeper.Beep();
    if (w.app.Saved == QLatin1String("no")) {
        const MsgAnswer save = w.services.messages.Show(
            {QStringLiteral("Property values have changed?\r\nYes = Save and Exit.\r\nNo = Just "
                            "Exit"),
             title, MsgButtons::YesNo, MsgIcon::Information, MsgDefault::Second});
        if (save == MsgAnswer::Yes)
            CMDSave_Click(w);
    }
    CloseWindowByTitle(w.services.windows, kServerWindowTitle);
    w.services.end.EndNow();
}

void CMDMin_Click(Hostwarden& w) {
    w.showMinimized();
}
