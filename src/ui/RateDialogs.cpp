#include "ui/RateDialogs.h"

#include "ui/automation/RateHandlers.h"
#include "ui_MsgRate.h"
#include "ui_Text_Rate.h"

Text_Rate::Text_Rate(Hostwarden& main) : main(main), ui(std::make_unique<Ui::Text_Rate>()) {
    ui->setupUi(this);
    auto* d = this;
    connect(ui->SlideTextRate, &QSlider::valueChanged, this, [d] { SlideTextRate_Change(*d); });
    connect(ui->Command1, &QAbstractButton::clicked, this, [d] { Text_Rate_Command1_Click(*d); });
    connect(ui->Command2, &QAbstractButton::clicked, this, [d] { Text_Rate_Command2_Click(*d); });
}

Text_Rate::~Text_Rate() = default;

MsgRate::MsgRate(Hostwarden& main) : main(main), ui(std::make_unique<Ui::MsgRate>()) {
    ui->setupUi(this);
    auto* d = this;
    connect(ui->SLDMsgRate, &QSlider::valueChanged, this, [d] { SLDMsgRate_Change(*d); });
    connect(ui->CMDOK, &QAbstractButton::clicked, this, [d] { MsgRate_CMDOK_Click(*d); });
    connect(ui->CMDCancel, &QAbstractButton::clicked, this, [d] { MsgRate_CMDCancel_Click(*d); });
}

MsgRate::~MsgRate() = default;
