#include "maps/VppArchive.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

QByteArray Word(quint32 value) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

TEST(VppArchive, WriterLaysOutAVersionOneArchive) {
    const QByteArray bytes =
        BuildVppArchive({{"ctf01.rfl", QByteArray(3000, 'a')}, {"readme.txt", "hello"}});
    // header block, one directory block, two blocks for 3000 bytes, one for 5 bytes
    ASSERT_EQ(bytes.size(), 5 * 2048);
    EXPECT_EQ(bytes.left(16), Word(0x51890ACE) + Word(1) + Word(2) + Word(5 * 2048));
    EXPECT_EQ(bytes.mid(2048, 3 * 64), QByteArray("ctf01.rfl").leftJustified(60, '\0') +
                                           Word(3000) +
                                           QByteArray("readme.txt").leftJustified(60, '\0') +
                                           Word(5) + QByteArray(64, '\0'));
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

// A directory written record by record, as another tool might have left it: names are
// trimmed and keep their case. A missing or cut-short archive gives the names it could read
// and says why it stopped.
TEST(VppArchive, ReadsHandMadeAndBrokenArchives) {
    QTemporaryDir dir;
    const QString path = dir.filePath("handmade.vpp");
    QByteArray bytes(kVppBlock, '\x7f'); // a header block that is never looked at
    for (const QByteArray& record :
         QList<QByteArray>{"  dm03.rfl  ", "CTF02.RFL", "My Level.rfl", "caf\xe9.rfl",
                           QByteArray("ctf04.rfl\0junk", 14), QByteArray(64, '\0')})
        bytes += record.leftJustified(kVppEntrySize, '\0');
    const QStringList names = {"dm03.rfl", "CTF02.RFL", "My Level.rfl", "café.rfl", "ctf04.rfl"};
    const struct {
        qsizetype keepBytes; // -1: no file at all
        int names;
        const char* error;
    } rows[] = {{bytes.size(), 5, ""},
                {-1, 0, "Cannot open %1: "},
                {0, 0, "%1 ends before its directory"},
                {1000, 0, "%1 ends before its directory"},
                {2048, 0, "%1 ends before its directory"},
                {2048 + 64 + 20, 1, "%1 ends inside its directory"},
                {2048 + 5 * 64, 5, "%1 ends inside its directory"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keepBytes);
        QFile file(path);
        file.remove();
        if (row.keepBytes >= 0) {
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(bytes.left(row.keepBytes));
            file.close();
        }
        const VppDirectory read = ReadVppDirectory(path);
        EXPECT_EQ(read.ok, !*row.error);
        EXPECT_EQ(read.ok, read.error.isEmpty());
        const QString error = QString(row.error).replace("%1", path);
        EXPECT_EQ(read.error.left(error.size()), error);
        EXPECT_EQ(read.names, names.mid(0, row.names));
    }
}

// A valid version-1 header bounds the directory by its file count; without one, reading
// stops only at an empty entry or the end of the file, and takes whatever it finds there.
// Only regular files are read: a folder or a pipe named like an archive is none.
TEST(VppArchive, ValidHeaderBoundsTheDirectory) {
    QTemporaryDir dir;
    QList<VppEntry> levels;
    QStringList names;
    for (int i = 0; i < 32; ++i)
        levels << VppEntry{names.emplace_back(QStringLiteral("dm%1.rfl").arg(i)), "level data"};
    const QByteArray stale = QByteArray("ctf99.rfl").leftJustified(kVppEntrySize, '\0');
    const struct {
        const char* what;
        int count;
        bool closed;
        quint32 version; // 0: no header at all
        QByteArray entry3;
        qsizetype keep;
        QStringList names;
        bool ok = true;
    } rows[] = {
        {"full last block", 32, false, 1, {}, -1, names},
        {"full last block, no header", 32, false, 0, {}, -1, names + QStringList{"level data"}},
        {"stale tail", 3, true, 1, stale, -1, names.mid(0, 3)},
        {"stale tail, version 2", 3, true, 2, stale, -1, names.mid(0, 3) << "ctf99.rfl"},
        {"64 bytes without a 0", 4, true, 1, QByteArray(64, 'x'), -1,
         names.mid(0, 3) << QString(64, 'x')},
        {"truncated", 3, true, 1, {}, kVppBlock + 2 * 64 + 10, names.mid(0, 2), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        QByteArray bytes = BuildVppArchive(levels.mid(0, row.count), row.closed);
        bytes.replace(0, 8,
                      row.version ? Word(kVppSignature) + Word(row.version) : Word(0) + Word(0));
        if (!row.entry3.isEmpty())
            bytes.replace(kVppBlock + 3 * kVppEntrySize, kVppEntrySize, row.entry3);
        QFile file(dir.filePath("pack.vpp"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes.left(row.keep < 0 ? bytes.size() : row.keep));
        file.close();
        const VppDirectory read = ReadVppDirectory(file.fileName());
        EXPECT_EQ(read.names, row.names);
        EXPECT_EQ(read.ok, row.ok);
    }
    ASSERT_TRUE(QDir(dir.path()).mkdir("folder.vpp"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(dir.filePath("pipe.vpp")).constData(), 0600), 0);
    for (const char* name : {"folder.vpp", "pipe.vpp"})
        EXPECT_EQ(ReadVppDirectory(dir.filePath(name)).error,
                  "Cannot open " + dir.filePath(name) + ": not a file");
}

} // namespace
