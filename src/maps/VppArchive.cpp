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
#include <vector>

namespace {

constexpr int kNameSize = 60;
// Entries read with one call: enough for most packs' whole directory.
constexpr qint64 kChunkEntries = 256;

QString TrimBlanks(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == QLatin1Char(' '))
        ++first;
    while (last > first && text[last - 1] == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}

QString EntryName(const char* record) {
    const auto* end = static_cast<const char*>(std::memchr(record, 0, kVppEntrySize));
    const qsizetype size = end ? end - record : kVppEntrySize;
    QString name(size, Qt::Uninitialized);
    QChar* out = name.data();
    for (qsizetype i = 0; i < size; ++i) {
        const auto byte = static_cast<std::uint8_t>(record[i]);
        out[i] = QChar(byte < 0x80 ? char16_t(byte) : char16_t(FromAnsi(byte)));
    }
    return TrimBlanks(name);
}

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

VppDirectory ReadDirectory(int fd, const QString& archivePath) {
    VppDirectory result;
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        result.error = QStringLiteral("Cannot open %1: not a file").arg(archivePath);
        return result;
    }
    const qint64 size = info.st_size;
    if (size <= kVppBlock) {
        result.error = QStringLiteral("%1 ends before its directory").arg(archivePath);
        return result;
    }
    qint64 limit = kVppMaxEntries;
    uchar header[12];
    if (ReadAt(fd, reinterpret_cast<char*>(header), sizeof header, 0) == sizeof header &&
        qFromLittleEndian<quint32>(header) == kVppSignature &&
        qFromLittleEndian<quint32>(header + 4) == 1)
        limit = std::min<qint64>(limit, qFromLittleEndian<quint32>(header + 8));

    std::vector<char> chunk;
    qint64 entry = 0;
    while (entry < limit) {
        const qint64 offset = kVppBlock + entry * kVppEntrySize;
        const qint64 wanted = std::min(limit - entry, kChunkEntries) * kVppEntrySize;
        chunk.resize(size_t(wanted));
        const qint64 got = ReadAt(fd, chunk.data(), std::min(wanted, size - offset), offset);
        for (qint64 at = 0; at + kVppEntrySize <= got; at += kVppEntrySize, ++entry) {
            if (chunk[size_t(at)] == 0) {
                result.ok = true;
                return result;
            }
            result.names.append(EntryName(chunk.data() + at));
        }
        if (got < wanted) {
            result.error = QStringLiteral("%1 ends inside its directory").arg(archivePath);
            return result;
        }
    }
    result.ok = true;
    return result;
}

} // namespace

VppDirectory ReadVppDirectory(const QString& archivePath) {
    // Non-blocking, so a pipe that carries an archive's name cannot stall the reader.
    const int fd =
        ::open(QFile::encodeName(archivePath).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        VppDirectory result;
        result.error = QStringLiteral("Cannot open %1: %2")
                           .arg(archivePath, QString::fromLocal8Bit(std::strerror(errno)));
        return result;
    }
    VppDirectory result = ReadDirectory(fd, archivePath);
    ::close(fd);
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
