#include "ui/Mods.h"

#include "ui/server/ModHandlers.h"
#include "ui_Mods.h"

Mods::Mods(Hostwarden& main) : main(main), ui(std::make_unique<Ui::Mods>()) {
    ui->setupUi(this);
    auto* d = this;
    // A selection, not the current row: the list makes its first row current, unselected,
    // when it takes the focus.
    connect(ui->LSTMod, &QListWidget::itemSelectionChanged, this, [d] { LSTMod_Click(*d); });
    connect(ui->CMDOK, &QAbstractButton::clicked, this, [d] { Mods_CMDOK_Click(*d); });
    connect(ui->CMDCancel, &QAbstractButton::clicked, this, [d] { Mods_CMDCancel_Click(*d); });
}

Mods::~Mods() = default;
