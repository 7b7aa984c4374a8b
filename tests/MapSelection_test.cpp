// The maps: the level names read from the game's archives, and the rotation built from them.
#include "MainWindow.h"

#include "maps/VppArchive.h"
#include "ui/ShippedMaps.h"
#include "ui_ShippedMaps.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <gtest/gtest.h>

#include <sys/stat.h>

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

namespace {

QByteArray Word(quint32 value) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// The directory as far as it goes: from byte 2048, 64 bytes an entry, names trimmed and
// kept in their case, up to an empty entry or the end of the file; under a valid version-1
// header no further than its file count, so that a full last block or a stale entry after
// the last never yields a name. Only regular files are read.
TEST(VppArchive, ReadsTheDirectoryAsFarAsItGoes) {
    QTemporaryDir dir;
    const QString path = dir.filePath("pack.vpp");
    QByteArray hand(kVppBlock, '\x7f'); // a header block that is no valid header
    for (const QByteArray& record :
         QList<QByteArray>{"  dm03.rfl  ", "CTF02.RFL", "My Level.rfl", "caf\xe9.rfl",
                           QByteArray("ctf04.rfl\0junk", 14), QByteArray(64, 'x'), QByteArray()})
        hand += record.leftJustified(kVppEntrySize, '\0');
    const QStringList handNames = {"dm03.rfl", "CTF02.RFL", "My Level.rfl",
                                   "café.rfl", "ctf04.rfl", QString(64, 'x')};
    QList<VppEntry> levels;
    QStringList names;
    for (int i = 0; i < 64; ++i)
        levels << VppEntry{names.emplace_back(QStringLiteral("dm%1.rfl").arg(i)), "level data"};
    const QByteArray full = BuildVppArchive(levels, false); // two full blocks, no closing record
    QByteArray stale = BuildVppArchive(levels.mid(0, 3));
    stale.replace(kVppBlock + 3 * kVppEntrySize, 9, "ctf99.rfl");
    const char *before = "%1 ends before its directory", *inside = "%1 ends inside its directory";
    const struct {
        const char* what;
        QByteArray bytes;
        QStringList names;
        const char* error = "";
    } rows[] = {
        {"no header", hand, handNames},
        {"0 bytes", {}, {}, before},
        {"header only", hand.left(2048), {}, before},
        {"cut in an entry", hand.left(2048 + 64 + 20), {"dm03.rfl"}, inside},
        {"cut after 6 entries", hand.left(2048 + 6 * 64), handNames, inside},
        {"closed", BuildVppArchive(levels.mid(0, 32)), names.mid(0, 32)},
        {"full last block", full, names},
        {"stale tail", stale, names.mid(0, 3)},
        {"stale tail, version 2", stale.left(4) + Word(2) + stale.mid(8),
         names.mid(0, 3) << "ctf99.rfl"},
        {"cut under a header", stale.left(2048 + 2 * 64 + 10), names.mid(0, 2), inside},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(row.bytes);
        file.close();
        const VppDirectory read = ReadVppDirectory(path);
        EXPECT_EQ(read.names, row.names);
        EXPECT_EQ(read.ok, !*row.error);
        EXPECT_EQ(read.error, QString(row.error).replace("%1", path));
    }
    ASSERT_TRUE(QDir(dir.path()).mkdir("folder.vpp"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(dir.filePath("pipe.vpp")).constData(), 0600), 0);
    for (const char* name : {"folder.vpp", "pipe.vpp", "missing.vpp"}) {
        const VppDirectory read = ReadVppDirectory(dir.filePath(name));
        EXPECT_TRUE(read.names.isEmpty() && !read.ok) << name;
        EXPECT_TRUE(read.error.startsWith("Cannot open " + dir.filePath(name) + ": "));
    }
}

} // namespace
