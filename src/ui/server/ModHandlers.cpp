#include "ui/server/ModHandlers.h"

#include "server/ModList.h"
#include "ui/DialogProtocol.h"
#include "ui/Hostwarden.h"
#include "ui/Mods.h"
#include "ui/WindowRegistry.h"
#include "ui_Hostwarden.h"
#include "ui_Mods.h"

void CMDMod_Click(Hostwarden& w) {
    auto* d = new Mods(w);
    w.forms.Mods = d;
    Mods_Form_Load(*d);
    OpenDialog(&w, d, StartPosition::CentreOwner);
}

void CMDRemovemod_Click(Hostwarden& w) {
    w.ui->TXTMod->setText(QStringLiteral("None"));
}

void Mods_Form_Load(Mods& d) {
    d.ui->LSTMod->clear();
    d.ui->LSTMod->addItems(UsableMods(d.main.app.GameDir));
}

void LSTMod_Click(Mods& d) {
    const QList<QListWidgetItem*> picked = d.ui->LSTMod->selectedItems();
    if (!picked.isEmpty())
        d.ui->TXTMod->setText(picked.front()->text());
}

void Mods_CMDOK_Click(Mods& d) {
    Hostwarden& w = d.main;
    w.ui->TXTMod->setText(d.ui->TXTMod->text());
    CloseDialog(&w, w.forms.Mods);
}

void Mods_CMDCancel_Click(Mods& d) {
    CloseDialog(&d.main, d.main.forms.Mods);
}
