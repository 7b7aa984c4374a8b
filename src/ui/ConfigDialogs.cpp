#include "ui/ConfigDialogs.h"

#include "ui/settings/ConfigListHandlers.h"
#include "ui_CopyConfig.h"
#include "ui_NewConf.h"

#include <QKeyEvent>

namespace {

// The name box's key press: true when the key is dealt with and goes no further.
template <class Dialog> bool NameKey(Dialog& d, QObject* watched, QEvent* event) {
    if (watched != d.ui->TXTNewName || event->type() != QEvent::KeyPress)
        return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    const int code = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter ? 13
                     : key->text().size() == 1 ? key->text()[0].unicode()
                                               : -1;
    return code >= 0 && TXTNewName_KeyPress(d, code) == 0;
}

} // namespace

NewConf::NewConf(Hostwarden& main) : main(main), ui(std::make_unique<Ui::NewConf>()) {
    ui->setupUi(this);
    setWindowFlags(Qt::Dialog); // the dialog border, no taskbar entry
    auto* d = this;
    connect(ui->TXTNewName, &QLineEdit::textChanged, this, [d] { TXTNewName_Change(*d); });
    connect(ui->CMDOK, &QAbstractButton::clicked, this, [d] { NewConf_CMDOK_Click(*d); });
    connect(ui->CMDCancel, &QAbstractButton::clicked, this, [d] { NewConf_CMDCancel_Click(*d); });
    ui->TXTNewName->installEventFilter(this);
}

NewConf::~NewConf() = default;

bool NewConf::eventFilter(QObject* watched, QEvent* event) {
    return NameKey(*this, watched, event) || QWidget::eventFilter(watched, event);
}

CopyConfig::CopyConfig(Hostwarden& main) : main(main), ui(std::make_unique<Ui::CopyConfig>()) {
    ui->setupUi(this);
    auto* d = this;
    connect(ui->TXTNewName, &QLineEdit::textChanged, this, [d] { TXTNewName_Change(*d); });
    connect(ui->CMDOK, &QAbstractButton::clicked, this, [d] { CopyConfig_CMDOK_Click(*d); });
    connect(ui->CMDCancel, &QAbstractButton::clicked, this,
            [d] { CopyConfig_CMDCancel_Click(*d); });
    ui->TXTNewName->installEventFilter(this);
}

CopyConfig::~CopyConfig() = default;

bool CopyConfig::eventFilter(QObject* watched, QEvent* event) {
    return NameKey(*this, watched, event) || QWidget::eventFilter(watched, event);
}
