// Arbitrary bytes as an archive: never more names than the file could hold. An even first
// byte lays out the input as header words (16 bytes) and a directory from byte 2048 (the
// rest), so that most inputs reach the directory.
#include "maps/VppArchive.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int fd = ::memfd_create("archive.vpp", MFD_CLOEXEC);
    QByteArray file(reinterpret_cast<const char*>(data), qsizetype(size));
    if (size > 0 && !(data[0] & 1))
        file = file.mid(1, 16).leftJustified(kVppBlock, '\0') + file.mid(17);
    if (fd < 0 || ::ftruncate(fd, 0) != 0 ||
        ::pwrite(fd, file.constData(), size_t(file.size()), 0) != file.size())
        std::abort();
    const VppDirectory directory = ReadVppDirectory(QStringLiteral("/proc/self/fd/%1").arg(fd));
    if (directory.names.size() > std::max<qsizetype>(0, file.size() - kVppBlock) / kVppEntrySize ||
        directory.ok != directory.error.isEmpty())
        std::abort();
    return 0;
}
