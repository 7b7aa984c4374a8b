#include "MainWindow.h"

#include "maps/VppArchive.h"
#include "ui/ShippedMaps.h"
#include "ui_ShippedMaps.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

// Mixed-case folders: a cut-short pack gives what it holds, DM packs stay shut for CTF, TeamDM
// gets the DM levels, no user_maps/multi gives none. Double-clicks pick, drop and remove; OK
// appends after the rotation; the count and the options text follow every edit.
TEST(MapSelection, CustomPacksPicksAndTheRotation) {
    QTemporaryDir dir;
    const auto write = [&](const QString& name, const QStringList& levels, qint64 keep = -1) {
        QList<VppEntry> entries;
        for (const QString& level : levels)
            entries << VppEntry{level, "RFLV"};
        ASSERT_TRUE(QDir(dir.path()).mkpath(QFileInfo(name).path()) &&
                    WriteVppArchive(dir.filePath(name), entries) &&
                    (keep < 0 || QFile::resize(dir.filePath(name), keep)));
    };
    write("LevelsM.VPP", {"ctf01.rfl", "dm01.rfl", "ctf02.rfl"});
    write("User_Maps/MULTI/ctf_e.vpp", {"ctf_cut.rfl", "ctf_lost.rfl"}, kVppBlock + 64 + 30);
    write("User_Maps/MULTI/DM_b.vpp", {"dm_a.rfl", "ctf_z.rfl"});
    MainWindow m;
    m.app.GameDir = dir.path() + '/';
    auto& ui = m.Start().ui();
    m.w->show();
    Ui::ShippedMaps* d = nullptr;
    const auto open = [&](QAbstractButton* option, bool custom = false) {
        option->click();
        ui.CMDAddMap->click();
        d = static_cast<ShippedMaps*>(m.forms.ShippedMaps)->ui.get();
        if (custom)
            d->CMDCustom->click();
        QStringList offered;
        for (int i = 0; i < d->LSTSHMaps->count(); ++i)
            offered << d->LSTSHMaps->item(i)->text();
        return offered;
    };
    const auto doubleClick = [](QListWidget* list, int row) {
        const QPoint at = list->visualItemRect(list->item(row)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at); // the view wants a press
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
    };
    EXPECT_EQ(open(ui.OPTCTF, true), QStringList{"ctf_cut.rfl"});
    d->CMDCancel->click();
    EXPECT_EQ(open(ui.OPTTDM, true), QStringList{"dm_a.rfl"});
    d->CMDCancel->click();
    EXPECT_EQ(open(ui.OPTCTF), QStringList({"ctf01.rfl", "ctf02.rfl"}));
    ui.LSTMaps->addItem("ctf05.rfl");
    for (const int row : {1, 0, 0})
        doubleClick(d->LSTSHMaps, row);
    doubleClick(d->LSTSelmaps, 2);
    d->CMDOK->click();
    const QString map = "$Map:            \"%1\"\r\n";
    EXPECT_TRUE(m.Text().endsWith("True\r\n" + map.arg("ctf05.rfl") + map.arg("ctf02.rfl") +
                                  map.arg("ctf01.rfl")));
    EXPECT_EQ(ui.MCS->text(), "3 Maps");
    ui.LSTMaps->setCurrentRow(0);
    ui.CMDRemoveMaps->click();
    EXPECT_EQ(ui.MCS->text(), "2 Maps");
    doubleClick(ui.LSTMaps, 1);
    EXPECT_TRUE(m.Text().endsWith("True\r\n" + map.arg("ctf02.rfl")));
    EXPECT_EQ(ui.MCS->text(), "1 Maps");
    ui.CMDClearMaps->click();
    EXPECT_TRUE(m.Text().endsWith("True\r\n"));
    EXPECT_EQ(ui.MCS->text(), "0 Maps");
    QDir(dir.filePath("User_Maps")).removeRecursively();
    EXPECT_EQ(open(ui.OPTCTF, true), QStringList());
}
