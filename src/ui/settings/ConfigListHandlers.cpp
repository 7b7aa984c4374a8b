#include "ui/settings/ConfigListHandlers.h"

#include "platform/Beeper.h"
#include "platform/MessageBoxes.h"
#include "platform/Services.h"
#include "platform/SettingsStore.h"
#include "settings/ConfigList.h"
#include "settings/ServerConfig.h"
#include "ui/ConfigDialogs.h"
#include "ui/DialogProtocol.h"
#include "ui/Hostwarden.h"
#include "ui/WindowRegistry.h"
#include "ui/settings/ConfigHandlers.h"
#include "ui_CopyConfig.h"
#include "ui_Hostwarden.h"
#include "ui_NewConf.h"

#include <type_traits>

namespace {

void Tell(Hostwarden& w, const QString& text, const QString& title) {
    w.services.messages.Show({text, title, MsgButtons::OK, MsgIcon::Critical, MsgDefault::First});
}

void CloseNameDialog(Hostwarden& w, QWidget*& dialog) {
    w.app.NewConfName.clear();
    CloseDialog(&w, dialog);
}

// Steps 1 and 2 of OK: a name is given and names neither a listed configuration, in any
// letter case, nor a section of the program's own settings.
bool NameIsFree(Hostwarden& w) {
    const QString& name = w.app.NewConfName;
    if (name.isEmpty()) {
        Tell(w, QStringLiteral("You must specify a name."), QStringLiteral("Field Error"));
        return false;
    }
    QComboBox* list = w.ui->LSTConfig;
    for (int i = 0; i < list->count(); ++i)
        if (list->itemText(i).compare(name, Qt::CaseInsensitive) == 0) {
            Tell(w,
                 QStringLiteral("A configuration with this name already exists. Choose a new "
                                "name to continue"),
                 QStringLiteral("Field Error"));
            return false;
        }
    if (IsFixedSectionName(name)) {
        Tell(w,
             name + QStringLiteral(" is the name of the program's own settings. Choose a new "
                                   "name to continue"),
             QStringLiteral("Field Error"));
        return false;
    }
    return true;
}

// Steps 3 to 10 of OK: the name is listed and stored, `write` fills its section, and the
// new configuration is loaded and current. The list entry and the section reach the file
// together.
template <class Write> void AddConfig(Hostwarden& w, QWidget*& dialog, Write write) {
    QComboBox* list = w.ui->LSTConfig;
    const QString name = w.app.NewConfName;
    list->addItem(name);
    w.ui->TXTConfName->setText(name);
    {
        const SettingsBatch batch(w.services.store);
        AppendConfigName(w.services.store, w.app.AppName, name);
        list->setCurrentIndex(list->count() - 1);
        write();
    }
    FillConfigList(w);
    CloseNameDialog(w, dialog);
    list->setCurrentIndex(list->count() - 1);
}

template <class Dialog> int NameKeyPress(Dialog& d, int keyAscii) {
    if (keyAscii == 32)
        return 0;
    if (keyAscii == 13) {
        if constexpr (std::is_same_v<Dialog, NewConf>)
            NewConf_CMDOK_Click(d);
        else
            CopyConfig_CMDOK_Click(d);
        return 0;
    }
    return keyAscii;
}

} // namespace

void CMDNew_Click(Hostwarden& w) {
    auto* d = new NewConf(w);
    w.forms.NewConf = d;
    OpenDialog(&w, d, StartPosition::CentreOwner);
}

void CMDCopy_Click(Hostwarden& w) {
    auto* d = new CopyConfig(w);
    w.forms.CopyConfig = d;
    CopyConfig_Form_Load(*d);
    OpenDialog(&w, d, StartPosition::CentreScreen);
}

void CMDDelete_Click(Hostwarden& w) {
    AppState& app = w.app;
    QComboBox* list = w.ui->LSTConfig;
    if (app.CurrentConf == QLatin1String("DEFAULT")) {
        Tell(w, QStringLiteral("Cannot delete default config, only modify."),
             QStringLiteral("Permission Denied"));
        return;
    }
    const MsgAnswer answer =
        w.services.messages.Show({QStringLiteral("Delete ") + app.CurrentConf + QStringLiteral("?"),
                                  QStringLiteral("Delete Configuration?"), MsgButtons::YesNo,
                                  MsgIcon::Critical, MsgDefault::Second});
    if (answer == MsgAnswer::Yes) {
        w.services.beeper.Beep();
        const int total = ReadConfigList(w.services.store, app.AppName).size();
        const int x = DeleteConfigName(w.services.store, app.AppName, app.CurrentConf);
        if (x == 0) {
            Tell(w,
                 app.CurrentConf + QStringLiteral(" is not in the configuration list. Nothing "
                                                  "was deleted."),
                 QStringLiteral("Delete Configuration"));
        } else {
            {
                // Removing the selected entry leaves none selected.
                const QSignalBlocker quiet(list);
                list->removeItem(x - 1);
                list->setCurrentIndex(-1);
            }
            Tell(w, app.CurrentConf + QStringLiteral(" deleted."),
                 QStringLiteral("Settings Deleted"));
            if (x < total)
                list->setCurrentIndex(x - 1);
            FillConfigList(w);
        }
    }
    if (list->currentIndex() < 0)
        list->setCurrentIndex(0);
}

void TXTNewName_Change(NewConf& d) {
    d.main.app.NewConfName = d.ui->TXTNewName->text().toUpper();
}

void TXTNewName_Change(CopyConfig& d) {
    d.main.app.NewConfName = d.ui->TXTNewName->text().toUpper();
}

int TXTNewName_KeyPress(NewConf& d, int keyAscii) {
    return NameKeyPress(d, keyAscii);
}

int TXTNewName_KeyPress(CopyConfig& d, int keyAscii) {
    return NameKeyPress(d, keyAscii);
}

void NewConf_CMDOK_Click(NewConf& d) {
    Hostwarden& w = d.main;
    if (NameIsFree(w))
        AddConfig(w, w.forms.NewConf, [&w] { CreateNewConfig(w.services.store, w.app); });
}

void NewConf_CMDCancel_Click(NewConf& d) {
    CloseNameDialog(d.main, d.main.forms.NewConf);
}

void CopyConfig_Form_Load(CopyConfig& d) {
    d.SourceConf = d.main.ui->LSTConfig->currentText();
    d.setWindowTitle(QStringLiteral("Copy ") + d.SourceConf + QStringLiteral(" to:"));
    d.ui->TXTOriginal->setText(d.SourceConf);
}

void CopyConfig_CMDOK_Click(CopyConfig& d) {
    Hostwarden& w = d.main;
    if (!NameIsFree(w))
        return;
    SettingsStore& store = w.services.store;
    if (store.GetSetting(w.app.AppName, d.SourceConf, "default") != QLatin1String("1")) {
        Tell(w,
             QStringLiteral("There is no stored configuration named ") + d.SourceConf +
                 QStringLiteral(" to copy. Nothing was created."),
             QStringLiteral("Copy Configuration"));
        CloseNameDialog(w, w.forms.CopyConfig);
        return;
    }
    const QString source = d.SourceConf;
    AddConfig(w, w.forms.CopyConfig, [&w, source] {
        CopyConfigKeys(w.services.store, w.app.AppName, source, w.app.NewConfName);
    });
}

void CopyConfig_CMDCancel_Click(CopyConfig& d) {
    CloseNameDialog(d.main, d.main.forms.CopyConfig);
}
