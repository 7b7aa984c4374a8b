#include "maps/VppArchive.h"

#include "platform/Ansi.h"

#include <QFile>
#include <QSaveFile>
#include <QtEndian>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

namespace {

constexpr int kNameSize = 60;
// Entries read with one call: enough for most packs' whole directory.
constexpr qint64 kChunkEntries = 256;

// Reads `size` bytes at `offset`, retrying short reads; the bytes read.
qint64 ReadAt(int fd, char* into, qint64 size, qint64 offset) {
    qint64 done = 0;
    while (done < size) {
        const ssize_t got = ::pread(fd, into + done, size_t(size - done), off_t(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += got;
    }
    return done;
}

void PutWord(QByteArray& out, qsizetype offset, quint32 value) {
    qToLittleEndian(value, out.data() + offset);
}

qsizetype RoundUp(qsizetype size) {
    return (size + kVppBlock - 1) / kVppBlock * kVppBlock;
}

VppDirectory VisitDirectory(int fd, const QString& archivePath, VppRunVisitor visit,
                            void* context) {
    VppDirectory result;
    // The header block and the first directory block come in one read; later reads take
    // no more than the rest of the directory. A file that opens with a valid header is read
    // as the archive it says it is, up to where a read comes short; anything else has to be
    // a regular file, whose size then bounds the reads.
    char buffer[kVppBlock + kChunkEntries * kVppEntrySize];
    qint64 available = ReadAt(fd, buffer, 2 * kVppBlock, 0);
    const auto* header = reinterpret_cast<const uchar*>(buffer);
    const bool headed = available >= 12 && qFromLittleEndian<quint32>(header) == kVppSignature &&
                        qFromLittleEndian<quint32>(header + 4) == 1;
    qint64 size = std::numeric_limits<qint64>::max();
    if (!headed) {
        struct stat info {};
        if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
            result.error = QStringLiteral("Cannot open %1: not a file").arg(archivePath);
            return result;
        }
        size = info.st_size;
    }
    if ((headed ? available : size) <= kVppBlock) {
        result.error = QStringLiteral("%1 ends before its directory").arg(archivePath);
        return result;
    }
    const qint64 limit =
        headed ? std::min<qint64>(kVppMaxEntries, qFromLittleEndian<quint32>(header + 8))
               : kVppMaxEntries;

    const char* chunk = buffer + kVppBlock;
    available -= kVppBlock;
    qint64 offset = kVppBlock;
    for (qint64 entry = 0; entry < limit;) {
        qint64 at = 0;
        bool ended = false;
        for (; at + kVppEntrySize <= available && entry < limit; at += kVppEntrySize, ++entry)
            if (chunk[at] == 0) {
                ended = true;
                break;
            }
        if (at > 0)
            visit(context, chunk, at / kVppEntrySize);
        if (ended || entry == limit)
            break;
        offset += at;
        const qint64 wanted =
            std::min(std::min(limit - entry, kChunkEntries) * kVppEntrySize, size - offset);
        available = wanted < kVppEntrySize ? 0 : ReadAt(fd, buffer, wanted, offset);
        if (available < kVppEntrySize) {
            result.error = QStringLiteral("%1 ends inside its directory").arg(archivePath);
            return result;
        }
        chunk = buffer;
    }
    result.ok = true;
    return result;
}

} // namespace

QString FromVppName(QByteArrayView name) {
    // The code page is Latin-1 but for 0x80..0x9F.
    QString text = QString::fromLatin1(name);
    for (QChar& ch : text)
        if (ch.unicode() >= 0x80 && ch.unicode() < 0xA0)
            ch = QChar(char16_t(FromAnsi(std::uint8_t(ch.unicode()))));
    return text;
}

VppDirectory VisitVppRuns(const QString& archivePath, VppRunVisitor visit, void* context) {
    // Non-blocking, so a pipe that carries an archive's name cannot stall the reader.
    const int fd =
        ::open(QFile::encodeName(archivePath).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        VppDirectory result;
        result.error = QStringLiteral("Cannot open %1: %2")
                           .arg(archivePath, QString::fromLocal8Bit(std::strerror(errno)));
        return result;
    }
    VppDirectory result = VisitDirectory(fd, archivePath, visit, context);
    ::close(fd);
    return result;
}

VppDirectory ReadVppDirectory(const QString& archivePath) {
    QStringList names;
    VppDirectory result = VisitVppDirectory(
        archivePath, [&names](QByteArrayView name) { names.append(FromVppName(name)); });
    result.names = std::move(names);
    return result;
}

QByteArray BuildVppArchive(const QList<VppEntry>& entries, bool closedDirectory) {
    const qsizetype records = entries.size() + (closedDirectory ? 1 : 0);
    const qsizetype directorySize = RoundUp(records * kVppEntrySize);
    qsizetype total = kVppBlock + directorySize;
    for (const VppEntry& entry : entries)
        total += RoundUp(entry.data.size());

    QByteArray out(total, '\0');
    PutWord(out, 0, kVppSignature);
    PutWord(out, 4, 1);
    PutWord(out, 8, static_cast<quint32>(entries.size()));
    PutWord(out, 12, static_cast<quint32>(total));

    qsizetype record = kVppBlock;
    qsizetype data = kVppBlock + directorySize;
    for (const VppEntry& entry : entries) {
        const QByteArray name = ToAnsi(entry.name).left(kNameSize - 1);
        out.replace(record, name.size(), name);
        PutWord(out, record + kNameSize, static_cast<quint32>(entry.data.size()));
        out.replace(data, entry.data.size(), entry.data);
        record += kVppEntrySize;
        data += RoundUp(entry.data.size());
    }
    return out;
}

bool WriteVppArchive(const QString& archivePath, const QList<VppEntry>& entries, QString* error) {
    QSaveFile file(archivePath);
    const QByteArray bytes = BuildVppArchive(entries);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = QStringLiteral("Cannot write %1: %2").arg(archivePath, file.errorString());
        return false;
    }
    return true;
}
