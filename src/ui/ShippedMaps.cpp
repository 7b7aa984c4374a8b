#include "ui/ShippedMaps.h"

#include "ui/maps/MapHandlers.h"
#include "ui_ShippedMaps.h"

ShippedMaps::ShippedMaps(Hostwarden& main) : main(main), ui(std::make_unique<Ui::ShippedMaps>()) {
    ui->setupUi(this);
    auto* d = this;
    connect(ui->CMDShipped, &QAbstractButton::clicked, this, [d] { CMDShipped_Click(*d); });
    connect(ui->CMDCustom, &QAbstractButton::clicked, this, [d] { CMDCustom_Click(*d); });
    connect(ui->CMDAdd, &QAbstractButton::clicked, this, [d] { CMDAdd_Click(*d); });
    connect(ui->CMDRemove, &QAbstractButton::clicked, this, [d] { CMDRemove_Click(*d); });
    connect(ui->LSTSHMaps, &QListWidget::itemDoubleClicked, this, [d] { LSTSHMaps_DblClick(*d); });
    connect(ui->LSTSelmaps, &QListWidget::itemDoubleClicked, this,
            [d] { LSTSelmaps_DblClick(*d); });
    connect(ui->CMDOK, &QAbstractButton::clicked, this, [d] { ShippedMaps_CMDOK_Click(*d); });
    connect(ui->CMDCancel, &QAbstractButton::clicked, this,
            [d] { ShippedMaps_CMDCancel_Click(*d); });
}

ShippedMaps::~ShippedMaps() = default;
