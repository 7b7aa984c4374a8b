#include "ui/maps/MapHandlers.h"

#include "maps/MapCatalogue.h"
#include "platform/FolderList.h"
#include "server/AppState.h"
#include "ui/DialogProtocol.h"
#include "ui/Hostwarden.h"
#include "ui/ShippedMaps.h"
#include "ui/WindowRegistry.h"
#include "ui/options/OptionsHandlers.h"
#include "ui_Hostwarden.h"
#include "ui_ShippedMaps.h"

namespace {

// The file list LSTMP keeps the folder it shows here.
const char* const kFolder = "path";

QListWidgetItem* Selected(QListWidget* list) {
    QListWidgetItem* item = list->currentItem();
    return item && item->isSelected() ? item : nullptr;
}

QStringList Items(const QListWidget* list) {
    QStringList items;
    for (int i = 0; i < list->count(); ++i)
        items << list->item(i)->text();
    return items;
}

void MapsEdited(Hostwarden& w) {
    BuildOptionsText(w);
    UpdateMapCount(w);
}

bool CtfSelected(const ShippedMaps& d) {
    return d.main.ui->OPTCTF->isChecked();
}

// Points the file list at `folder` and lists the files there that match `pattern`.
void ShowFiles(ShippedMaps& d, const QString& folder, const QString& pattern) {
    QListWidget* files = d.ui->LSTMP;
    files->clear();
    files->setProperty(kFolder, FolderPath(folder));
    files->setProperty("pattern", pattern);
    if (!folder.isEmpty())
        files->addItems(ListFiles(folder, pattern));
}

QString FilePath(const ShippedMaps& d, const QString& name) {
    const QString folder = d.ui->LSTMP->property(kFolder).toString();
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + '/' + name;
}

// `candidates` are what Lstmpmaps holds.
void Filter_Levels(ShippedMaps& d, const QStringList& candidates) {
    d.ui->LSTSHMaps->clear();
    d.ui->LSTSHMaps->addItems(FilterLevels(candidates, CtfSelected(d)));
}

// The filter is run once after the last archive rather than after each: nothing can look
// at the list in between, and a large installation would pay for every pass.
void Read_Levels(ShippedMaps& d, const QStringList& archives) {
    QStringList candidates = Items(d.ui->Lstmpmaps);
    const qsizetype before = candidates.size();
    for (const QString& archive : archives)
        ReadLevels(archive, candidates);
    d.ui->Lstmpmaps->addItems(before ? candidates.mid(before) : candidates);
    if (!archives.isEmpty())
        Filter_Levels(d, candidates);
}

void Set_Cust(ShippedMaps& d, const QString& pattern) {
    ShowFiles(d, FindFolder(d.main.app.GameDir, kCustomFolder), pattern);
    QStringList archives;
    for (const QString& pack : Items(d.ui->LSTMP))
        archives << FilePath(d, pack);
    Read_Levels(d, archives);
}

void Set_Ship(ShippedMaps& d) {
    ShowFiles(d, d.main.app.GameDir, kStockArchive);
    const QStringList found = Items(d.ui->LSTMP);
    Read_Levels(d, {FilePath(d, found.isEmpty() ? kStockArchive : found.first())});
}

void Fill_Available(ShippedMaps& d) {
    if (d.main.app.MapListMode == QLatin1String("cust")) {
        if (CtfSelected(d))
            Set_Cust_CTF(d);
        else
            Set_Cust_DM(d);
    }
    if (d.main.app.MapListMode == QLatin1String("ship"))
        Set_Ship(d);
}

} // namespace

void CMDAddMap_Click(Hostwarden& w) {
    auto* d = new ShippedMaps(w);
    w.forms.ShippedMaps = d;
    ShippedMaps_Form_Load(*d);
    d->setWindowTitle(QStringLiteral("Select Maps"));
    OpenDialog(&w, d, StartPosition::CentreOwner);
}

void CMDRemoveMaps_Click(Hostwarden& w) {
    if (QListWidgetItem* item = Selected(w.ui->LSTMaps)) {
        delete item;
        MapsEdited(w);
    }
}

void CMDClearMaps_Click(Hostwarden& w) {
    w.ui->LSTMaps->clear();
    MapsEdited(w);
}

void LSTMaps_DblClick(Hostwarden& w) {
    CMDRemoveMaps_Click(w);
}

void ShippedMaps_Form_Load(ShippedMaps& d) {
    CMDShipped_Click(d);
}

void CMDShipped_Click(ShippedMaps& d) {
    d.main.app.MapListMode = QStringLiteral("ship");
    d.ui->LSTSHMaps->clear();
    d.ui->Lstmpmaps->clear();
    Fill_Available(d);
}

void CMDCustom_Click(ShippedMaps& d) {
    d.main.app.MapListMode = QStringLiteral("cust");
    d.ui->Lstmpmaps->clear();
    d.ui->LSTSHMaps->clear();
    Fill_Available(d);
}

void Set_Cust_CTF(ShippedMaps& d) {
    Set_Cust(d, kCtfPacks);
}

void Set_Cust_DM(ShippedMaps& d) {
    Set_Cust(d, kDmPacks);
}

void CMDAdd_Click(ShippedMaps& d) {
    if (QListWidgetItem* item = Selected(d.ui->LSTSHMaps))
        d.ui->LSTSelmaps->addItem(item->text());
}

void LSTSHMaps_DblClick(ShippedMaps& d) {
    CMDAdd_Click(d);
}

void CMDRemove_Click(ShippedMaps& d) {
    delete Selected(d.ui->LSTSelmaps);
}

void LSTSelmaps_DblClick(ShippedMaps& d) {
    CMDRemove_Click(d);
}

void ShippedMaps_CMDOK_Click(ShippedMaps& d) {
    Hostwarden& w = d.main;
    w.ui->LSTMaps->addItems(Items(d.ui->LSTSelmaps));
    CloseDialog(&w, w.forms.ShippedMaps);
    UpdateMapCount(w);
    BuildOptionsText(w);
}

void ShippedMaps_CMDCancel_Click(ShippedMaps& d) {
    CloseDialog(&d.main, d.main.forms.ShippedMaps);
}
