#include "ui/server/SetupHandlers.h"

#include "platform/MessageBoxes.h"
#include "platform/ProcessEnd.h"
#include "platform/Services.h"
#include "platform/SettingsStore.h"
#include "platform/WindowServices.h"
#include "server/AppState.h"
#include "settings/ProjectInfo.h"
#include "settings/ServerConfig.h"
#include "ui/DialogProtocol.h"
#include "ui/Hostwarden.h"
#include "ui/Setup.h"
#include "ui/WindowRegistry.h"
#include "ui/server/StartupHandlers.h"
#include "ui_Setup.h"

#include <QGuiApplication>
#include <QScreen>

namespace {

void CentreOnScreen(QWidget* window) {
    if (QScreen* screen = QGuiApplication::primaryScreen())
        window->move(screen->availableGeometry().center() - window->rect().center());
}

} // namespace

void Setup_Form_Load(Setup& s) {
    AppState& app = s.app;
    app.AppName = kAppName;
    app.SetupDone = s.services.store.GetSetting(app.AppName, "Startup", "HasRunSetup");
    s.ui->TXTRFLocate->setText(s.services.store.GetSetting(app.AppName, "Startup", "RFlocation"));
    TXTRFLocate_Change(s);
    if (!s.ui->TXTRFLocate->text().isEmpty())
        s.ui->CMDOK->setEnabled(true);

    if (app.SetupDone.isEmpty()) {
        const MsgAnswer answer = s.services.messages.Show(
            {QStringLiteral(
                 "Warning, it is highly recommended that you make a backup of "
                 "dedicated_server.txt located in your redfaction game directory. This "
                 "application will modify this file. Ckick Cancel to exit setup or click OK "
                 "to continue"),
             QStringLiteral("Warning"), MsgButtons::OKCancel, MsgIcon::None, MsgDefault::First});
        if (answer != MsgAnswer::OK)
            s.services.end.EndNow();
        return;
    }
    Setup_CMDOK_Click(s);
}

void ShowSetup(Setup& s) {
    if (s.forms.Setup)
        OpenDialog(nullptr, &s, StartPosition::CentreScreen);
}

void TXTRFLocate_Change(Setup& s) {
    if (s.ui->TXTRFLocate->text().isEmpty())
        s.ui->CMDOK->setEnabled(false);
}

void Setup_CMDOK_Click(Setup& s) {
    AppState& app = s.app;
    SettingsStore& store = s.services.store;
    app.GameDir = s.ui->TXTRFLocate->text();
    {
        // The first-run flag is never stored without the configuration it promises.
        const SettingsBatch batch(store);
        store.SaveSetting(app.AppName, "Startup", "HasRunSetup", "1");
        store.SaveSetting(app.AppName, "Startup", "RFLocation", app.GameDir);
        if (app.SetupDone.isEmpty())
            CreateDefaultConfig(store, app.AppName);
    }

    WindowRegistry& forms = s.forms;
    if (!forms.MainWindow) {
        forms.MainWindow = new Hostwarden(app, forms, s.services);
        Hostwarden_Form_Load(*forms.MainWindow);
    }
    CentreOnScreen(forms.MainWindow);
    forms.MainWindow->show();
    s.services.windows.SetMainWindow(static_cast<WindowHandle>(forms.MainWindow->winId()));

    s.hide();
    if (forms.Setup == &s)
        forms.Setup = nullptr;
    s.deleteLater();
}

void Setup_CMDCancel_Click(Setup& s) {
    s.services.end.EndNow();
}
