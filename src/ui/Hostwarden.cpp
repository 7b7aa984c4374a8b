#include "ui/Hostwarden.h"

#include "automation/AutoMessages.h"
#include "automation/ModPushKeys.h"
#include "platform/ProcessLauncher.h"
#include "platform/Services.h"
#include "ui/DialogProtocol.h"
#include "ui/WindowRegistry.h"
#include "ui/automation/AutoMessageHandlers.h"
#include "ui/automation/RateHandlers.h"
#include "ui/maps/MapHandlers.h"
#include "ui/server/LaunchHandlers.h"
#include "ui/server/ModHandlers.h"
#include "ui/server/StartupHandlers.h"
#include "ui/server/WatchHandlers.h"
#include "ui/settings/AboutHandlers.h"
#include "ui/settings/ConfigFieldHandlers.h"
#include "ui/settings/ConfigHandlers.h"
#include "ui/settings/ConfigListHandlers.h"
#include "ui_Hostwarden.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QIcon>
#include <QKeyEvent>
#include <QLineEdit>

QIcon HostwardenIcon() {
    QIcon icon;
    icon.addFile(QStringLiteral(":/ui/images/icon16.png"), QSize(16, 16));
    icon.addFile(QStringLiteral(":/ui/images/icon32.png"), QSize(32, 32));
    return icon;
}

namespace {

// Typing into an editable drop-down chooses nothing: no completion, and neither Enter
// nor leaving the field selects the entry that matches the typed text.
void TypingChoosesNothing(QComboBox* list) {
    list->setCompleter(nullptr);
    QLineEdit* edit = list->lineEdit();
    QObject::disconnect(edit, &QLineEdit::editingFinished, list, nullptr);
    QObject::disconnect(edit, &QLineEdit::returnPressed, list, nullptr);
}

} // namespace

Hostwarden::Hostwarden(AppState& state, WindowRegistry& windows, Services& services,
                       QWidget* parent)
    : QWidget(parent), app(state), forms(windows), services(services),
      ui(std::make_unique<Ui::Hostwarden>()) {
    ui->setupUi(this);
    setWindowIcon(HostwardenIcon());
    for (QComboBox* list : findChildren<QComboBox*>())
        if (list->isEditable())
            TypingChoosesNothing(list);
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    setFixedSize(791, 504);
    for (QTimer* timer : {&Timer1, &TMRAdds, &TMRSend, &ConsoleWatch})
        timer->setParent(this);
    Timer1.setObjectName(QStringLiteral("Timer1"));
    TMRAdds.setObjectName(QStringLiteral("TMRAdds"));
    TMRSend.setObjectName(QStringLiteral("TMRSend"));
    TXTMess = {ui->TXTMess_0, ui->TXTMess_1, ui->TXTMess_2, ui->TXTMess_3};

    auto* gameType = new QButtonGroup(this);
    gameType->setExclusive(true);
    for (auto* option : {ui->OPTCTF, ui->OPTDM, ui->OPTTDM})
        gameType->addButton(option);

    Timer1.setInterval(MessageSecondMs());
    TMRAdds.setInterval(MessageSecondMs());
    TMRSend.setInterval(110);
    keys_ = std::make_unique<ModPushKeys>(services.keyboard);
    messageHost_ = std::make_unique<MainWindowMessageHost>(*this);
    automation_ = std::make_unique<AutoMessages>(*messageHost_, app, services.windows, *keys_,
                                                 services.random, services.beeper,
                                                 services.messages, services.clock);

    ConsoleWatch.setObjectName(QStringLiteral("ConsoleWatch"));
    ConsoleWatch.setSingleShot(true);
    ConsoleWatch.setInterval(kConsoleWatchSeconds * 1000);
    services.launcher.OnProgramExit(
        [this](const ProgramExit& exit) { automation_->ServerExited(exit); });

    Connect();
    Timer1.start();
}

Hostwarden::~Hostwarden() {
    services.launcher.OnProgramExit({});
}

int Hostwarden::TextRate() const {
    return TMRSend.interval();
}

void Hostwarden::SetTextRate(int ms) {
    TMRSend.setInterval(ms);
}

const AutoMessages& Hostwarden::Automation() const {
    return *automation_;
}

void Hostwarden::ForgetServer() {
    automation_->ForgetServer();
}

void Hostwarden::ServerLaunched(std::uint32_t handle) {
    automation_->ServerLaunched(handle, services.launcher.StartedProcess());
}

void Hostwarden::WatchServer(std::int64_t process) {
    automation_->WatchServer(process);
    ConsoleWatch.start();
}

void Hostwarden::Connect() {
    auto* w = this;
    connect(ui->OPTCTF, &QAbstractButton::toggled, this, [w] { OPTCTF_Click(*w); });
    connect(ui->OPTDM, &QAbstractButton::toggled, this, [w] { OPTDM_Click(*w); });
    connect(ui->OPTTDM, &QAbstractButton::toggled, this, [w] { OPTTDM_Click(*w); });

    const auto onPick = [this](QComboBox* list, void (*handler)(Hostwarden&)) {
        connect(list, &QComboBox::currentIndexChanged, this, [this, handler](int index) {
            if (index >= 0)
                handler(*this);
        });
    };
    onPick(ui->MaxPlayers, MaxPlayers_Click);
    onPick(ui->MaxTime, MaxTime_Click);
    onPick(ui->MaxKills, MaxKills_Click);
    onPick(ui->MaxCaps, MaxCaps_Click);
    onPick(ui->MaxGeo, MaxGeo_Click);
    onPick(ui->TeamDamage, TeamDamage_Click);
    onPick(ui->FallDamage, FallDamage_Click);
    onPick(ui->WeaponStay, WeaponStay_Click);
    onPick(ui->ForceSpawn, ForceSpawn_Click);
    onPick(ui->Balance, Balance_Click);

    connect(ui->TXTServName, &QLineEdit::textChanged, this, [w] { TXTServName_Change(*w); });
    connect(ui->TXTPassword, &QLineEdit::textChanged, this, [w] { TXTPassword_Change(*w); });
    connect(ui->TXTRconPass, &QLineEdit::textChanged, this, [w] { TXTRconPass_Change(*w); });
    connect(ui->TXTSTat, &QPlainTextEdit::textChanged, this, [w] { TXTSTat_Change(*w); });
    connect(ui->TXTConfName, &QLineEdit::textChanged, this, [w] { TXTConfName_Change(*w); });
    connect(ui->TXTMod, &QLineEdit::textChanged, this, [w] { TXTMod_Change(*w); });
    for (QLineEdit* box : TXTMess)
        connect(box, &QLineEdit::textChanged, this, [w] { TXTMess_Change(*w); });

    connect(ui->LSTConfig, &QComboBox::currentIndexChanged, this, [w](int index) {
        if (index >= 0)
            LSTConfig_Click(*w);
    });
    connect(ui->CMDLoad, &QAbstractButton::clicked, this, [w] { CMDLoad_Click(*w); });
    connect(ui->CMDSave, &QAbstractButton::clicked, this, [w] { CMDSave_Click(*w); });
    connect(ui->CMDNew, &QAbstractButton::clicked, this, [w] { CMDNew_Click(*w); });
    connect(ui->CMDCopy, &QAbstractButton::clicked, this, [w] { CMDCopy_Click(*w); });
    connect(ui->CMDDelete, &QAbstractButton::clicked, this, [w] { CMDDelete_Click(*w); });
    connect(ui->CMDMod, &QAbstractButton::clicked, this, [w] { CMDMod_Click(*w); });
    connect(ui->CMDRemovemod, &QAbstractButton::clicked, this, [w] { CMDRemovemod_Click(*w); });

    connect(ui->CMDAddMap, &QAbstractButton::clicked, this, [w] { CMDAddMap_Click(*w); });
    connect(ui->CMDRemoveMaps, &QAbstractButton::clicked, this, [w] { CMDRemoveMaps_Click(*w); });
    connect(ui->CMDClearMaps, &QAbstractButton::clicked, this, [w] { CMDClearMaps_Click(*w); });
    connect(ui->LSTMaps, &QListWidget::itemDoubleClicked, this, [w] { LSTMaps_DblClick(*w); });

    connect(ui->CHKGameTracker, &QAbstractButton::toggled, this, [w] { CHKGameTracker_Click(*w); });
    connect(ui->CHKPort, &QAbstractButton::toggled, this, [w] { CHKPort_Click(*w); });
    connect(ui->CHKServRec, &QAbstractButton::toggled, this, [w] { CHKServRec_Click(*w); });
    connect(ui->TXTPort, &QLineEdit::textChanged, this, [w] { TXTPort_Change(*w); });

    connect(ui->CMDLaunch, &QAbstractButton::clicked, this, [w] { CMDLaunch_Click(*w); });
    connect(ui->CMDExit, &QAbstractButton::clicked, this, [w] { CMDExit_Click(*w); });
    connect(ui->CMDMin, &QAbstractButton::clicked, this, [w] { CMDMin_Click(*w); });
    connect(ui->CMDTextRate, &QAbstractButton::clicked, this, [w] { CMDTextRate_Click(*w); });
    connect(ui->CMDMsgRate, &QAbstractButton::clicked, this, [w] { CMDMsgRate_Click(*w); });
    connect(ui->CMDAbout, &QAbstractButton::clicked, this, [w] { CMDAbout_Click(*w); });

    connect(ui->CHKMessage, &QAbstractButton::toggled, this,
            [w](bool checked) { w->automation_->CHKMessage_Click(checked); });
    connect(&Timer1, &QTimer::timeout, this, [w] { w->automation_->Timer1_Timer(); });
    connect(&TMRAdds, &QTimer::timeout, this, [w] { w->automation_->TMRAdds_Timer(); });
    connect(&TMRSend, &QTimer::timeout, this, [w] { w->automation_->TMRSend_Timer(); });
    connect(&ConsoleWatch, &QTimer::timeout, this, [w] { ConsoleWatch_Timer(*w); });

    ui->TXTConfName->installEventFilter(this);
    ui->Image1->installEventFilter(this);
}

bool Hostwarden::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui->TXTConfName && event->type() == QEvent::KeyPress) {
        const QString typed = static_cast<QKeyEvent*>(event)->text();
        if (typed.size() == 1 && TXTConfName_KeyPress(*this, typed[0].unicode()) == 0)
            return true;
    }
    if (watched == ui->Image1 && event->type() == QEvent::MouseButtonRelease) {
        Image1_Click(*this);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void Hostwarden::changeEvent(QEvent* event) {
    KeepDialogForward(this, event,
                      {forms.About, forms.ShippedMaps, forms.Mods, forms.NewConf, forms.CopyConfig,
                       forms.Text_Rate, forms.MsgRate});
    QWidget::changeEvent(event);
}

void Hostwarden::closeEvent(QCloseEvent* event) {
    // The window has no close box; "Exit" is the way out.
    event->ignore();
}
