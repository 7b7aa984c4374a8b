#include "ui/server/WatchHandlers.h"

#include "automation/AutoMessages.h"
#include "automation/ConsoleWatch.h"
#include "automation/WatchMessages.h"
#include "platform/ProcessLauncher.h"
#include "platform/Services.h"
#include "ui/Hostwarden.h"

void ConsoleWatch_Timer(Hostwarden& w) {
    const std::int64_t server = w.Automation().WatchedServer();
    if (server == 0 || ServerWindowShown(w.services.windows))
        return;
    w.services.messages.Show(ConsoleMissingMessage(w.app.GameDir + w.app.ServerExe,
                                                   kConsoleWatchSeconds,
                                                   w.services.launcher.ErrorOutput(server)));
}
