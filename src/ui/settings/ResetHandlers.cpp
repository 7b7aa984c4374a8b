#include "ui/settings/ResetHandlers.h"

#include "platform/Beeper.h"
#include "platform/MessageBoxes.h"
#include "platform/ProcessEnd.h"
#include "platform/Services.h"
#include "platform/SettingsStore.h"
#include "server/AppState.h"

void CMDReset_Click(Services& services, const AppState& state) {
    const MsgAnswer answer = services.messages.Show(
        {QStringLiteral("All configurations and settings for this program will be deleted.\r\n"
                        "Reset Registry entries for this program?"),
         QStringLiteral("Reset Application Registry Entries?"), MsgButtons::YesNo,
         MsgIcon::Critical, MsgDefault::Second});
    if (answer != MsgAnswer::Yes)
        return;
    services.beeper.Beep();
    services.store.DeleteAll(state.AppName);
    services.end.EndNow();
}
