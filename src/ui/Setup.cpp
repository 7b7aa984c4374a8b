#include "ui/Setup.h"

#include "ui/DialogProtocol.h"
#include "ui/WindowRegistry.h"
#include "ui/server/BrowseHandlers.h"
#include "ui/server/SetupHandlers.h"
#include "ui_Setup.h"

#include <QCloseEvent>

Setup::Setup(AppState& state, WindowRegistry& windows, Services& services, QWidget* parent)
    : QWidget(parent), app(state), forms(windows), services(services),
      ui(std::make_unique<Ui::Setup>()) {
    ui->setupUi(this);
    PrepareDialog(this);
    auto* w = this;
    connect(ui->TXTRFLocate, &QLineEdit::textChanged, this, [w] { TXTRFLocate_Change(*w); });
    connect(ui->CMDBrowse, &QAbstractButton::clicked, this, [w] { CMDBrowse_Click(*w); });
    connect(ui->CMDOK, &QAbstractButton::clicked, this, [w] { Setup_CMDOK_Click(*w); });
    connect(ui->CMDCancel, &QAbstractButton::clicked, this, [w] { Setup_CMDCancel_Click(*w); });
}

Setup::~Setup() = default;

void Setup::changeEvent(QEvent* event) {
    KeepDialogForward(this, event, {forms.Browse});
    QWidget::changeEvent(event);
}

void Setup::closeEvent(QCloseEvent* event) {
    // Closed only through its own buttons.
    if (isVisible())
        event->ignore();
}
