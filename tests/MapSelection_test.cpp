#include "MainWindow.h"

#include "maps/VppArchive.h"
#include "ui/ShippedMaps.h"
#include "ui_ShippedMaps.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// A game directory copied from Windows, mixed case kept, with its packs (none: no
// user_maps/multi): two CTF packs, a 0-byte one, a cut-short one, a folder, two DM packs.
struct Rig : MainWindow {
    QTemporaryDir dir;
    void Write(const QString& name, const QStringList& levels, qsizetype keep = 1 << 30) {
        QList<VppEntry> entries;
        for (const QString& level : levels)
            entries << VppEntry{level, "RFLV"};
        QDir(dir.path()).mkpath(QFileInfo(name).path());
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(BuildVppArchive(entries).left(keep));
    }
    explicit Rig(bool packs = true, const char* option = "OPTCTF") {
        Write("LevelsM.VPP", {"ctf01.rfl", "dm01.rfl", "ctf02.rfl"});
        const QString multi = packs ? "User_Maps/MULTI/" : "user_maps/";
        Write(multi + "ctf_b.vpp", {"ctf01.rfl", "ctf_x.rfl"});
        Write(multi + "CTF_a.vpp", {"dm05.rfl", "ctf_y.rfl"});
        Write(multi + "ctf_d.vpp", {}, 0);
        Write(multi + "ctf_e.vpp", {"ctf_cut.rfl", "ctf_lost.rfl"}, kVppBlock + 64 + 30);
        Write(multi + "dm_pack.vpp", {"dm_a.rfl", "ctf_z.rfl"});
        Write(multi + "DM_b.vpp", {"dm_a.rfl"});
        QDir(dir.path()).mkpath(multi + "Ctf_c.vpp");
        app.GameDir = dir.path() + '/';
        Start().w->show();
        w->findChild<QRadioButton*>(option)->click();
        ui().CMDAddMap->click();
    }
    Ui::ShippedMaps& dialog() { return *static_cast<ShippedMaps*>(forms.ShippedMaps)->ui; }
};

void DoubleClick(QListWidget* list, int row) {
    const QPoint at = list->visualItemRect(list->item(row)).center();
    // The view takes a double-click only after the press of the first click.
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

} // namespace

// Folders, archives and packs are found whatever their case, packs in name order; a pack
// that cannot be read gives what it holds up to the break; TeamDM offers the DM levels.
TEST(MapSelection, CatalogueOfEachSourceAndGameType) {
    const struct {
        const char *option, *source;
        QStringList available;
        bool packs = true;
    } rows[] = {
        {"OPTTDM", "CMDShipped", {"dm01.rfl"}},
        {"OPTCTF", "CMDCustom", {"ctf_y.rfl", "ctf01.rfl", "ctf_x.rfl", "ctf_cut.rfl"}},
        {"OPTTDM", "CMDCustom", {"dm_a.rfl", "dm_a.rfl"}},
        {"OPTCTF", "CMDCustom", {}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.option) + row.source + (row.packs ? "" : " no packs"));
        Rig m(row.packs, row.option);
        m.forms.ShippedMaps->findChild<QPushButton*>(row.source)->click();
        QStringList available;
        for (int i = 0; i < m.dialog().LSTSHMaps->count(); ++i)
            available << m.dialog().LSTSHMaps->item(i)->text();
        EXPECT_EQ(available, row.available);
    }
}

// OK appends the picks after the rotation; Remove, Clear and a double-click edit it, and the
// count label and the options text follow each edit.
TEST(MapSelection, PicksAppendOnOKAndTheRotationIsEdited) {
    Rig m;
    auto& ui = m.ui();
    ui.LSTMaps->addItem("ctf05.rfl");
    EXPECT_EQ(m.forms.ShippedMaps->windowTitle(), "Select Maps");
    DoubleClick(m.dialog().LSTSHMaps, 1);
    DoubleClick(m.dialog().LSTSHMaps, 0);
    DoubleClick(m.dialog().LSTSHMaps, 0);
    DoubleClick(m.dialog().LSTSelmaps, 2);
    m.dialog().CMDOK->click();
    const QString map = "$Map:            \"%1\"\r\n";
    EXPECT_TRUE(m.Text().endsWith("True\r\n" + map.arg("ctf05.rfl") + map.arg("ctf02.rfl") +
                                  map.arg("ctf01.rfl")));
    EXPECT_EQ(ui.MCS->text(), "3 Maps");

    m.app.Saved = "yes";
    ui.LSTMaps->setCurrentRow(-1);
    ui.CMDRemoveMaps->click(); // nothing selected
    EXPECT_EQ(m.app.Saved, "yes");
    ui.LSTMaps->setCurrentRow(0);
    ui.CMDRemoveMaps->click();
    EXPECT_EQ(ui.MCS->text(), "2 Maps");
    DoubleClick(ui.LSTMaps, 1);
    EXPECT_TRUE(m.Text().endsWith("True\r\n" + map.arg("ctf02.rfl")));
    EXPECT_EQ(ui.MCS->text(), "1 Maps");
    ui.CMDClearMaps->click();
    EXPECT_TRUE(m.Text().endsWith("True\r\n"));
    EXPECT_EQ(ui.MCS->text(), "0 Maps");
    EXPECT_EQ(m.app.Saved, "no");
}
