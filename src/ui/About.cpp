#include "ui/About.h"

#include "ui/settings/AboutHandlers.h"
#include "ui_About.h"

About::About(Hostwarden& main) : main(main), ui(std::make_unique<Ui::About>()) {
    ui->setupUi(this);
    auto* d = this;
    connect(ui->CMDOK, &QAbstractButton::clicked, this, [d] { About_CMDOK_Click(*d); });
    connect(ui->CMDReset, &QAbstractButton::clicked, this, [d] { About_CMDReset_Click(*d); });
}

About::~About() = default;
