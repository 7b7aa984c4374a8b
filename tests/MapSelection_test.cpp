#include "MainWindow.h"

#include "maps/VppArchive.h"
#include "ui/ShippedMaps.h"
#include "ui_ShippedMaps.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// A game directory in the mixed case a copy from Windows keeps, with broken packs among
// the good ones and a pack that does not match either pattern.
struct Game {
    QTemporaryDir dir;
    QString Path() const { return dir.path() + '/'; }
    void Write(const QString& name, const QStringList& levels, qsizetype keep = -1) const {
        QList<VppEntry> entries;
        for (const QString& level : levels)
            entries << VppEntry{level, "RFLV"};
        QDir(dir.path()).mkpath(QFileInfo(name).path());
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(BuildVppArchive(entries).left(keep < 0 ? Q_INT64_C(1) << 40 : keep));
    }
    explicit Game(bool packs = true) {
        Write("LevelsM.VPP", {"ctf01.rfl", "dm01.rfl", "readme.txt", "CTF02.RFL", "CTF02.rfl"});
        if (!packs)
            return;
        const QString multi = "User_Maps/MULTI/";
        Write(multi + "ctf_b.vpp", {"ctf01.rfl", "ctf_x.rfl"});
        Write(multi + "CTF_a.vpp", {"dm05.rfl", "ctf_y.rfl"});
        Write(multi + "ctf_d.vpp", {}, 0);
        Write(multi + "ctf_e.vpp", {"ctf_cut.rfl", "ctf_lost.rfl"}, kVppBlock + 64 + 30);
        Write(multi + "dm_pack.vpp", {"dm_a.rfl", "ctf_z.rfl"});
        Write(multi + "DM_b.vpp", {"dm_a.rfl"});
        Write(multi + "readme.vpp", {"ctf_no.rfl", "dm_no.rfl"});
        QDir(dir.path()).mkpath(multi + "Ctf_c.vpp");
    }
};

ShippedMaps& Open(MainWindow& m) {
    m.w->findChild<QPushButton*>("CMDAddMap")->click();
    return *static_cast<ShippedMaps*>(m.forms.ShippedMaps);
}

QStringList Items(const QListWidget* list) {
    QStringList items;
    for (int i = 0; i < list->count(); ++i)
        items << list->item(i)->text();
    return items;
}

void DoubleClick(QListWidget* list, int row) {
    const QPoint at = list->visualItemRect(list->item(row)).center();
    // The view takes a double-click only after the press of the first click.
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

} // namespace

// Stock levels come from levelsm.vpp, custom ones from the packs of the game type in name
// order; only exact ".rfl" names of the type's prefix are offered, once per occurrence.
// Packs that cannot be read give what they hold up to the break.
TEST(MapSelection, CatalogueOfEachSourceAndGameType) {
    const struct {
        bool packs;
        const char* option;
        const char* source;
        QStringList available;
    } rows[] = {
        {true, "OPTCTF", "CMDShipped", {"ctf01.rfl", "ctf02.rfl"}},
        {true, "OPTDM", "CMDShipped", {"dm01.rfl"}},
        {true, "OPTTDM", "CMDShipped", {"dm01.rfl"}},
        {true, "OPTCTF", "CMDCustom", {"ctf_y.rfl", "ctf01.rfl", "ctf_x.rfl", "ctf_cut.rfl"}},
        {true, "OPTDM", "CMDCustom", {"dm_a.rfl", "dm_a.rfl"}},
        {true, "OPTTDM", "CMDCustom", {"dm_a.rfl", "dm_a.rfl"}},
        {false, "OPTCTF", "CMDCustom", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.option) + " " + row.source + (row.packs ? "" : " no packs"));
        const Game game(row.packs);
        MainWindow m;
        m.app.GameDir = game.Path();
        m.Start().w->findChild<QRadioButton*>(row.option)->click();
        ShippedMaps& d = Open(m);
        EXPECT_EQ(d.windowTitle(), "Select Maps");
        EXPECT_FALSE(m.w->isEnabled());
        d.findChild<QPushButton*>(row.source)->click();
        EXPECT_EQ(Items(d.ui->LSTSHMaps), row.available);
        EXPECT_EQ(m.app.MapListMode, QString(row.source) == "CMDShipped" ? "ship" : "cust");
        EXPECT_FALSE(d.ui->Lstmpmaps->isVisibleTo(&d) || d.ui->LSTMP->isVisibleTo(&d));
    }
}

// Picks survive a switch of source and reach the rotation only through OK, after what it
// held; Remove, Clear and a double-click edit it, and the count and options follow.
TEST(MapSelection, PicksAppendOnOKOnlyAndTheRotationIsEdited) {
    const Game game;
    MainWindow m;
    m.app.GameDir = game.Path();
    auto& ui = m.Start().ui();
    m.w->show();
    ui.LSTMaps->addItem("ctf05.rfl");
    m.app.Saved = "yes";

    ShippedMaps* d = &Open(m);
    d->ui->LSTSHMaps->setCurrentRow(1);
    d->ui->CMDAdd->click();
    d->ui->CMDAdd->click();
    d->ui->CMDCustom->click();
    DoubleClick(d->ui->LSTSHMaps, 0);
    EXPECT_EQ(Items(d->ui->LSTSelmaps), QStringList({"ctf02.rfl", "ctf02.rfl", "ctf_y.rfl"}));
    d->ui->LSTSelmaps->setCurrentRow(0);
    d->ui->CMDRemove->click();
    DoubleClick(d->ui->LSTSelmaps, 1);
    EXPECT_EQ(Items(d->ui->LSTSelmaps), QStringList({"ctf02.rfl"}));
    d->ui->CMDCancel->click();
    EXPECT_TRUE(m.w->isEnabled());
    EXPECT_EQ(m.forms.ShippedMaps, nullptr);
    EXPECT_EQ(m.Maps(), QStringList({"ctf05.rfl"}));
    EXPECT_EQ(m.app.Saved, "yes");

    d = &Open(m);
    EXPECT_EQ(m.app.MapListMode, "ship");
    DoubleClick(d->ui->LSTSHMaps, 1);
    DoubleClick(d->ui->LSTSHMaps, 0);
    d->ui->CMDOK->click();
    EXPECT_TRUE(m.w->isEnabled());
    const QString lines = "$Map:            \"ctf05.rfl\"\r\n$Map:            \"ctf02.rfl\"\r\n"
                          "$Map:            \"ctf01.rfl\"\r\n";
    EXPECT_TRUE(m.Text().endsWith("True\r\n" + lines)) << m.Text().toStdString();
    EXPECT_EQ(ui.MCS->text(), "3 Maps");
    EXPECT_EQ(m.app.Saved, "no");

    m.app.Saved = "yes";
    ui.LSTMaps->setCurrentRow(-1);
    ui.CMDRemoveMaps->click(); // nothing selected
    EXPECT_EQ(m.app.Saved, "yes");
    ui.LSTMaps->setCurrentRow(0);
    ui.CMDRemoveMaps->click();
    EXPECT_EQ(m.Maps(), QStringList({"ctf02.rfl", "ctf01.rfl"}));
    EXPECT_EQ(ui.MCS->text(), "2 Maps");
    DoubleClick(ui.LSTMaps, 1);
    EXPECT_TRUE(m.Text().endsWith("True\r\n$Map:            \"ctf02.rfl\"\r\n"));
    EXPECT_EQ(ui.MCS->text(), "1 Maps");
    ui.CMDClearMaps->click();
    EXPECT_TRUE(m.Text().endsWith("True\r\n"));
    EXPECT_EQ(ui.MCS->text(), "0 Maps");
    EXPECT_EQ(m.app.Saved, "no");
}
