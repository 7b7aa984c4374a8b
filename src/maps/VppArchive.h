#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

#include <cstring>
#include <type_traits>

// The game's .vpp archive, version 1: a 2048-byte header block (signature, version,
// file count, archive size as little-endian 32-bit words), the directory from byte
// 2048 (64-byte entries: NUL-padded 60-byte name, 32-bit size; 32 entries a block),
// then each file's data from a block boundary.

// The directory as far as the reader got: names in stored order, blanks trimmed.
struct VppDirectory {
    QStringList names;
    bool ok = false; // false when the file could not be opened or ended inside the directory
    QString error;   // why, for the operator, when not ok
};

inline constexpr quint32 kVppSignature = 0x51890ACE;
inline constexpr int kVppBlock = 2048;
inline constexpr int kVppEntrySize = 64;
// A bound far above what the game's archives hold: no directory is read past it.
inline constexpr int kVppMaxEntries = 65536;

// Reads the entry names from byte 2048 on, 64 bytes an entry, up to an entry whose first
// byte is 0 or the end of the file. A valid version-1 header also bounds the directory by
// its file count, so a full last directory block or stale bytes after the last entry never
// yield names taken from file data; only the header and directory blocks are read then.
// Folders and pipes are never read, nor any file that is not a regular one and does not open
// with a valid header.
// Never throws; a truncated or unreadable file gives the names read so far and ok = false.
VppDirectory ReadVppDirectory(const QString& archivePath);

// A directory entry's name: its bytes up to the first 0 byte (all 64 when there is none),
// blanks trimmed.
inline QByteArrayView VppEntryName(const char* record) {
    const auto* end = static_cast<const char*>(std::memchr(record, 0, kVppEntrySize));
    const char* last = end ? end : record + kVppEntrySize;
    while (record < last && *record == ' ')
        ++record;
    while (last > record && last[-1] == ' ')
        --last;
    return QByteArrayView(record, last - record);
}

// The same reading, handing the entries over a run at a time: `count` 64-byte records from
// `records`, every one a name. The result says how far it went and leaves its names empty.
using VppRunVisitor = void (*)(void* context, const char* records, qsizetype count);
VppDirectory VisitVppRuns(const QString& archivePath, VppRunVisitor visit, void* context);

// The same reading, handing each entry's name to `visit` as stored, blanks trimmed.
template <class Visit> VppDirectory VisitVppDirectory(const QString& archivePath, Visit&& visit) {
    using Visitor = std::remove_reference_t<Visit>;
    const VppRunVisitor names = [](void* context, const char* records, qsizetype count) {
        Visitor& each = *static_cast<Visitor*>(context);
        for (const char* record = records; count-- > 0; record += kVppEntrySize)
            each(VppEntryName(record));
    };
    return VisitVppRuns(archivePath, names, const_cast<void*>(static_cast<const void*>(&visit)));
}

// A stored name as text: the game's code page, Windows-1252.
QString FromVppName(QByteArrayView name);

struct VppEntry {
    QString name; // stored in the game's code page, cut to 59 bytes so a NUL ends it
    QByteArray data;
};

// The complete archive holding `entries` in order. A closed directory ends with an
// all-zero entry, for readers that stop there; an open one fills its blocks with entries
// only, so a multiple of 32 entries leaves no room for the closing entry.
QByteArray BuildVppArchive(const QList<VppEntry>& entries, bool closedDirectory = true);

// Writes BuildVppArchive(entries) to `archivePath`; on failure returns false and sets
// `error` when given.
bool WriteVppArchive(const QString& archivePath, const QList<VppEntry>& entries,
                     QString* error = nullptr);
