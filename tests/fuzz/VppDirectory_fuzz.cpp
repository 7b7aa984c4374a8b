// Feeds arbitrary bytes to the archive directory reader as the contents of a regular file,
// through the path and through the open file, and checks what it promises about the names.
#include "maps/MapCatalogue.h"
#include "maps/VppArchive.h"

#include <QtEndian>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

void Check(bool holds) {
    if (!holds)
        std::abort();
}

// An input whose first byte is odd is the file as it stands. Otherwise the next 16 bytes
// are the header's first words and the rest is the directory from byte 2048, so that most
// inputs reach the directory without 2 KiB of padding to discover.
QByteArray Archive(const std::uint8_t* data, std::size_t size) {
    const auto* bytes = reinterpret_cast<const char*>(data);
    if (size == 0 || (data[0] & 1))
        return QByteArray(bytes, qsizetype(size));
    const qsizetype header = qsizetype(std::min<std::size_t>(size - 1, 16));
    QByteArray file(bytes + 1, header);
    file.resize(kVppBlock, '\0');
    return file + QByteArray(bytes + 1 + header, qsizetype(size) - 1 - header);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t inputSize) {
    static const int fd = ::memfd_create("archive.vpp", MFD_CLOEXEC);
    static const QString path = QStringLiteral("/proc/self/fd/%1").arg(fd);
    const QByteArray archive = Archive(input, inputSize);
    const auto* data = reinterpret_cast<const std::uint8_t*>(archive.constData());
    const std::size_t size = std::size_t(archive.size());
    Check(fd >= 0 && ::ftruncate(fd, 0) == 0);
    Check(::pwrite(fd, data, size, 0) == ssize_t(size));

    const VppDirectory directory = ReadVppDirectory(fd, path);
    qint64 bound = size > std::size_t(kVppBlock) ? qint64(size - kVppBlock) / kVppEntrySize : 0;
    if (size >= 12 && qFromLittleEndian<quint32>(data) == kVppSignature &&
        qFromLittleEndian<quint32>(data + 4) == 1)
        bound = std::min<qint64>(bound, qFromLittleEndian<quint32>(data + 8));
    Check(directory.names.size() <= std::min<qint64>(bound, kVppMaxEntries));
    Check(directory.ok == directory.error.isEmpty());
    for (const QString& name : directory.names)
        Check(name.size() <= kVppEntrySize && !name.contains(QChar(0)));

    QStringList candidates;
    ReadLevels(path, candidates);
    Check(candidates.size() <= directory.names.size());
    Check(FilterLevels(candidates, true).size() + FilterLevels(candidates, false).size() <=
          candidates.size());
    return 0;
}
