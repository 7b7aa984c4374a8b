// Feeds arbitrary bytes to the archive directory reader as the contents of a regular file,
// through the path and through the open file, and checks what it promises about the names.
#include "maps/MapCatalogue.h"
#include "maps/VppArchive.h"

#include <QtEndian>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

namespace {

void Check(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int fd = ::memfd_create("archive.vpp", MFD_CLOEXEC);
    static const QString path = QStringLiteral("/proc/self/fd/%1").arg(fd);
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
