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
        // A version-1 header: signature, version, file count, archive size.
        const quint32 size = 2048 * (1 + directoryBlocks + count);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.read(16), Word(0x51890ACE) + Word(1) + Word(count) + Word(size));
        EXPECT_EQ(file.size(), size);
        if (count) { // each record: the name in 60 bytes, the data's size; the data block-aligned
            EXPECT_TRUE(file.seek(2048) &&
                        file.read(64) == QByteArray("dm00.rfl").leftJustified(60, '\0') + Word(10));
            EXPECT_TRUE(file.seek(size - 2048) && file.read(11) == QByteArray("level data\0", 11));
        }
    }
}

// The directory as far as it goes: from byte 2048, 64 bytes an entry, names trimmed and
// kept in their case, up to an empty entry or the end of the file; under a valid version-1
// header no further than its file count, so that a full last block or a stale entry after
// the last never yields a name. Only regular files are read.
TEST(VppArchive, ReadsTheDirectoryAsFarAsItGoes) {
    QByteArray hand(kVppBlock, '\x7f'); // a header block that is no valid header
    for (const QByteArray& record :
         QList<QByteArray>{"  dm03.rfl  ", "CTF02.RFL", "My Level.rfl", "caf\xe9.rfl",
                           QByteArray("ctf04.rfl\0junk", 14), QByteArray(64, 'x'), QByteArray()})
        hand += record.leftJustified(kVppEntrySize, '\0');
    const QStringList handNames = {"dm03.rfl", "CTF02.RFL", "My Level.rfl",
                                   "café.rfl", "ctf04.rfl", QString(64, 'x')};
    QList<VppEntry> levels;
    QStringList names;
    for (int i = 0; i < 32; ++i)
        levels << VppEntry{names.emplace_back(QStringLiteral("dm%1.rfl").arg(i)), "level data"};
    const QByteArray full = BuildVppArchive(levels, false); // the data right after the block
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
        {"full last block", full, names},
        {"stale tail", stale, names.mid(0, 3)},
        {"stale tail, version 2", stale.left(4) + Word(2) + stale.mid(8),
         names.mid(0, 3) << "ctf99.rfl"},
        {"cut under a header", stale.left(2048 + 2 * 64 + 10), names.mid(0, 2), inside},
    };
    QTemporaryDir dir;
    const QString path = dir.filePath("pack.vpp");
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
