// Arbitrary bytes as an archive's contents, read through its path and through the open file:
// no crash, hang, leak or sanitizer report, and never more names than the file could hold.
// An input with an even first byte is laid out as header words (its next 16 bytes) and a
// directory from byte 2048 (the rest), so that most inputs reach the directory.
#include "maps/MapCatalogue.h"
#include "maps/VppArchive.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int fd = ::memfd_create("archive.vpp", MFD_CLOEXEC);
    static const QString path = QStringLiteral("/proc/self/fd/%1").arg(fd);
    QByteArray file(reinterpret_cast<const char*>(data), qsizetype(size));
    if (size > 0 && !(data[0] & 1))
        file = file.mid(1, 16).leftJustified(kVppBlock, '\0') + file.mid(17);
    if (fd < 0 || ::ftruncate(fd, 0) != 0 ||
        ::pwrite(fd, file.constData(), size_t(file.size()), 0) != file.size())
        std::abort();

    const VppDirectory directory = ReadVppDirectory(fd, path);
    QStringList levels;
    const bool ok = ReadLevels(path, levels);
    if (directory.names.size() > std::max<qsizetype>(0, file.size() - kVppBlock) / kVppEntrySize ||
        directory.ok != directory.error.isEmpty() || ok != directory.ok ||
        levels.size() > directory.names.size())
        std::abort();
    return 0;
}
