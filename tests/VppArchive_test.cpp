#include "maps/VppArchive.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

quint32 WordAt(const QByteArray& bytes, qsizetype offset) {
    quint32 value = 0;
    for (int i = 3; i >= 0; --i)
        value = (value << 8) | static_cast<quint8>(bytes[offset + i]);
    return value;
}

// A directory written byte by byte, as another tool might have left it.
QByteArray HandMade(const QList<QByteArray>& records) {
    QByteArray bytes(kVppBlock, '\x7f'); // the header is never looked at
    for (QByteArray record : records) {
        record.resize(kVppEntrySize, '\0');
        bytes += record;
    }
    return bytes;
}

class VppArchiveTest : public ::testing::Test {
protected:
    QString Put(const QString& name, const QByteArray& bytes) {
        const QString path = dir.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }
    QTemporaryDir dir;
};

TEST_F(VppArchiveTest, WriterLaysOutAVersionOneArchive) {
    const QList<VppEntry> entries = {{"ctf01.rfl", QByteArray(3000, 'a')},
                                     {"readme.txt", QByteArray("hello")}};
    const QByteArray bytes = BuildVppArchive(entries);

    EXPECT_EQ(WordAt(bytes, 0), 0x51890ACEu);
    EXPECT_EQ(WordAt(bytes, 4), 1u);
    EXPECT_EQ(WordAt(bytes, 8), 2u);
    EXPECT_EQ(WordAt(bytes, 12), static_cast<quint32>(bytes.size()));
    // header block, one directory block, two blocks for 3000 bytes, one for 5 bytes
    EXPECT_EQ(bytes.size(), 5 * 2048);
    EXPECT_EQ(bytes.mid(2048, 10), QByteArray("ctf01.rfl\0", 10));
    EXPECT_EQ(bytes.mid(2048 + 9, 51), QByteArray(51, '\0'));
    EXPECT_EQ(WordAt(bytes, 2048 + 60), 3000u);
    EXPECT_EQ(WordAt(bytes, 2048 + 64 + 60), 5u);
    EXPECT_EQ(bytes.at(2048 + 128), '\0');
    EXPECT_EQ(bytes.mid(2 * 2048, 3000), QByteArray(3000, 'a'));
    EXPECT_EQ(bytes.mid(4 * 2048, 5), QByteArray("hello"));
}

struct RoundTripRow {
    int entries;
    qsizetype directoryBlocks;
};

class VppRoundTripTest : public VppArchiveTest,
                         public ::testing::WithParamInterface<RoundTripRow> {};

// A full directory block must still read back as exactly its entries.
TEST_P(VppRoundTripTest, ReadsBackEveryName) {
    QList<VppEntry> entries;
    QStringList names;
    for (int i = 0; i < GetParam().entries; ++i) {
        names << QStringLiteral("dm%1.rfl").arg(i, 2, 10, QLatin1Char('0'));
        entries << VppEntry{names.last(), QByteArray("level data")};
    }
    const QString path = dir.filePath("pack.vpp");
    ASSERT_TRUE(WriteVppArchive(path, entries));

    const VppDirectory read = ReadVppDirectory(path);
    EXPECT_TRUE(read.ok) << read.error.toStdString();
    EXPECT_EQ(read.names, names);
    EXPECT_EQ(QFile(path).size(), 2048 * (1 + GetParam().directoryBlocks + GetParam().entries));
}

INSTANTIATE_TEST_SUITE_P(Sizes, VppRoundTripTest,
                         ::testing::Values(RoundTripRow{0, 1}, RoundTripRow{1, 1},
                                           RoundTripRow{31, 1}, RoundTripRow{32, 2},
                                           RoundTripRow{40, 2}));

TEST_F(VppArchiveTest, NamesAreTrimmedAndKeepTheirCase) {
    const QString path =
        Put("names.vpp", HandMade({"  dm03.rfl  ", "CTF02.RFL", "My Level.rfl",
                                   QByteArray("caf\xe9.rfl"), QByteArray("ctf04.rfl\0junk", 14)}) +
                             QByteArray(64, '\0'));
    const VppDirectory read = ReadVppDirectory(path);
    EXPECT_TRUE(read.ok);
    EXPECT_EQ(read.names, QStringList({"dm03.rfl", "CTF02.RFL", "My Level.rfl",
                                       QString::fromUtf8("café.rfl"), "ctf04.rfl"}));
}

struct BrokenRow {
    const char* what;
    qsizetype keepBytes; // of a three-entry archive; -1: no file at all
    QStringList names;
};

class VppBrokenTest : public VppArchiveTest, public ::testing::WithParamInterface<BrokenRow> {};

TEST_P(VppBrokenTest, GivesWhatItCouldReadAndSaysSo) {
    const BrokenRow& row = GetParam();
    QString path = dir.filePath("missing.vpp");
    if (row.keepBytes >= 0)
        path =
            Put("broken.vpp", HandMade({"ctf01.rfl", "ctf02.rfl", "dm01.rfl"}).left(row.keepBytes));
    const VppDirectory read = ReadVppDirectory(path);
    EXPECT_FALSE(read.ok) << row.what;
    EXPECT_FALSE(read.error.isEmpty()) << row.what;
    EXPECT_EQ(read.names, row.names) << row.what;
}

INSTANTIATE_TEST_SUITE_P(
    Files, VppBrokenTest,
    ::testing::Values(BrokenRow{"missing file", -1, {}}, BrokenRow{"empty file", 0, {}},
                      BrokenRow{"header only", 2048, {}}, BrokenRow{"short header", 1000, {}},
                      BrokenRow{"cut inside the second entry", 2048 + 64 + 20, {"ctf01.rfl"}},
                      BrokenRow{"directory never closed",
                                2048 + 3 * 64,
                                {"ctf01.rfl", "ctf02.rfl", "dm01.rfl"}}));

} // namespace
