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

// A header block that is never looked at, then a directory written record by record, as
// another tool might have left it.
QString HandMade(const QTemporaryDir& dir, const QList<QByteArray>& records, qsizetype keep = -1) {
    QByteArray bytes(kVppBlock, '\x7f');
    for (QByteArray record : records)
        bytes += record.leftJustified(kVppEntrySize, '\0');
    const QString path = dir.filePath("handmade.vpp");
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(keep < 0 ? bytes : bytes.left(keep));
    return path;
}

TEST(VppArchive, WriterLaysOutAVersionOneArchive) {
    const QByteArray bytes = BuildVppArchive(
        {{"ctf01.rfl", QByteArray(3000, 'a')}, {"readme.txt", QByteArray("hello")}});
    EXPECT_EQ(WordAt(bytes, 0), 0x51890ACEu);
    EXPECT_EQ(WordAt(bytes, 4), 1u);
    EXPECT_EQ(WordAt(bytes, 8), 2u);
    EXPECT_EQ(WordAt(bytes, 12), static_cast<quint32>(bytes.size()));
    // header block, one directory block, two blocks for 3000 bytes, one for 5 bytes
    EXPECT_EQ(bytes.size(), 5 * 2048);
    EXPECT_EQ(bytes.mid(2048, 60), QByteArray("ctf01.rfl").leftJustified(60, '\0'));
    EXPECT_EQ(WordAt(bytes, 2048 + 60), 3000u);
    EXPECT_EQ(WordAt(bytes, 2048 + 64 + 60), 5u);
    EXPECT_EQ(bytes.at(2048 + 128), '\0');
    EXPECT_EQ(bytes.mid(2 * 2048, 3000), QByteArray(3000, 'a'));
    EXPECT_EQ(bytes.mid(4 * 2048, 5), QByteArray("hello"));
}

// The directory is closed by an empty record, so a full directory block gets one more.
TEST(VppArchive, ReadsBackEveryName) {
    QTemporaryDir dir;
    const QString path = dir.filePath("pack.vpp");
    for (const auto& [count, directoryBlocks] :
         std::vector<std::pair<int, int>>{{0, 1}, {1, 1}, {31, 1}, {32, 2}, {40, 2}}) {
        SCOPED_TRACE(count);
        QList<VppEntry> entries;
        QStringList names;
        for (int i = 0; i < count; ++i) {
            names << QStringLiteral("dm%1.rfl").arg(i, 2, 10, QLatin1Char('0'));
            entries << VppEntry{names.last(), QByteArray("level data")};
        }
        ASSERT_TRUE(WriteVppArchive(path, entries));
        const VppDirectory read = ReadVppDirectory(path);
        EXPECT_TRUE(read.ok) << read.error.toStdString();
        EXPECT_EQ(read.names, names);
        EXPECT_EQ(QFile(path).size(), 2048 * (1 + directoryBlocks + count));
    }
}

TEST(VppArchive, NamesAreTrimmedAndKeepTheirCase) {
    QTemporaryDir dir;
    const VppDirectory read = ReadVppDirectory(
        HandMade(dir, {"  dm03.rfl  ", "CTF02.RFL", "My Level.rfl", QByteArray("caf\xe9.rfl"),
                       QByteArray("ctf04.rfl\0junk", 14), QByteArray(64, '\0')}));
    EXPECT_TRUE(read.ok);
    EXPECT_EQ(read.names, QStringList({"dm03.rfl", "CTF02.RFL", "My Level.rfl",
                                       QString::fromUtf8("café.rfl"), "ctf04.rfl"}));
}

// A missing or cut-short archive gives the names it could read and says why it stopped.
TEST(VppArchive, BrokenArchiveGivesWhatItCouldRead) {
    QTemporaryDir dir;
    const struct {
        qsizetype keepBytes; // of a three-entry archive; -1: no file at all
        QStringList names;
        const char* error;
    } rows[] = {
        {-1, {}, "Cannot open %1: "},
        {0, {}, "%1 ends before its directory"},
        {2048, {}, "%1 ends before its directory"},
        {1000, {}, "%1 ends before its directory"},
        {2048 + 64 + 20, {"ctf01.rfl"}, "%1 ends inside its directory"},
        {2048 + 3 * 64, {"ctf01.rfl", "ctf02.rfl", "dm01.rfl"}, "%1 ends inside its directory"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keepBytes);
        const QString path =
            row.keepBytes < 0
                ? dir.filePath("missing.vpp")
                : HandMade(dir, {"ctf01.rfl", "ctf02.rfl", "dm01.rfl"}, row.keepBytes);
        const VppDirectory read = ReadVppDirectory(path);
        EXPECT_FALSE(read.ok);
        EXPECT_TRUE(read.error.startsWith(QString(row.error).arg(path)))
            << read.error.toStdString();
        EXPECT_EQ(read.names, row.names);
    }
}

} // namespace
