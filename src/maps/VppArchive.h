#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// The game's .vpp archive, version 1: a 2048-byte header block (signature, version,
// file count, archive size as little-endian 32-bit words), the directory from byte
// 2048 (64-byte entries: NUL-padded 60-byte name, 32-bit size; 32 entries a block,
// ended by an all-zero entry),
// then each file's data from a block boundary.

// The directory as far as the reader got: names in stored order, blanks trimmed.
struct VppDirectory {
    QStringList names;
    bool ok = false; // false when the file could not be opened or ended inside the directory
    QString error;   // why, for the operator, when not ok
};

// Reads the entry names from byte 2048 on, 64 bytes an entry, up to an entry whose
// first byte is 0 or the end of the file. Never throws; a truncated or missing file
// gives the names read so far and ok = false.
VppDirectory ReadVppDirectory(const QString& archivePath);

struct VppEntry {
    QString name; // stored in the game's code page, cut to 59 bytes so a NUL ends it
    QByteArray data;
};

inline constexpr quint32 kVppSignature = 0x51890ACE;
inline constexpr int kVppBlock = 2048;
inline constexpr int kVppEntrySize = 64;

// The complete archive holding `entries` in order.
QByteArray BuildVppArchive(const QList<VppEntry>& entries);

// Writes BuildVppArchive(entries) to `archivePath`; on failure returns false and sets
// `error` when given.
bool WriteVppArchive(const QString& archivePath, const QList<VppEntry>& entries,
                     QString* error = nullptr);
