#include "settings/AtomicFile.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString FolderOf(const QString& path) {
    const qsizetype slash = path.lastIndexOf(u'/');
    if (slash < 0)
        return QStringLiteral(".");
    return slash == 0 ? QStringLiteral("/") : path.left(slash);
}

bool Fail(QString* problem, const QString& what, int error) {
    if (problem)
        *problem = what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(error));
    return false;
}

// The file that writing to path changes: path itself, or where its links lead.
QString LinkTarget(const QString& path) {
    QString target = path;
    for (int hops = 0; hops < 40 && QFileInfo(target).isSymLink(); ++hops)
        target = QFileInfo(target).symLinkTarget();
    return target;
}

bool SyncFolder(const QString& folder, QString* problem) {
    const int fd =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return Fail(problem, QStringLiteral("the folder %1 cannot be opened").arg(folder), errno);
    // Some file systems cannot sync a folder; the rename itself has happened then.
    const bool ok = ::fsync(fd) == 0 || errno == EINVAL;
    const int error = errno;
    ::close(fd);
    return ok || Fail(problem, QStringLiteral("the folder %1 cannot be synced").arg(folder), error);
}

} // namespace

bool MakeFolders(const QString& folder, QString* problem) {
    const QByteArray name = QFile::encodeName(folder);
    if (::mkdir(name.constData(), 0700) == 0)
        return true;
    int error = errno;
    if (error == ENOENT) {
        const QString parent = FolderOf(folder);
        if (parent == folder || !MakeFolders(parent, problem))
            return false;
        if (::mkdir(name.constData(), 0700) == 0)
            return true;
        error = errno;
    }
    struct stat st {};
    if (error == EEXIST && ::stat(name.constData(), &st) == 0) {
        if (S_ISDIR(st.st_mode))
            return true;
        error = ENOTDIR;
    }
    return Fail(problem, QStringLiteral("the folder %1 cannot be created").arg(folder), error);
}

QString TemporaryFilePrefix(const QString& path) {
    return LinkTarget(path) + QStringLiteral(".tmp.");
}

bool WriteFileAtomically(const QString& linkOrFile, const QByteArray& bytes, QString* problem,
                         MissingFolder missing) {
    const QString path = LinkTarget(linkOrFile);
    const QString folder = FolderOf(path);
    if (missing == MissingFolder::Create && !MakeFolders(folder, problem))
        return false;

    QByteArray tempName = QFile::encodeName(TemporaryFilePrefix(path)) + "XXXXXX";
    const int fd = ::mkostemp(tempName.data(), O_CLOEXEC);
    if (fd < 0)
        return Fail(problem, QStringLiteral("no new file can be made in %1").arg(folder), errno);
    auto abandon = [&](const QString& what) {
        const int error = errno;
        ::close(fd);
        ::unlink(tempName.constData());
        return Fail(problem, what, error);
    };

    const char* data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, data, size_t(left));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            if (n == 0)
                errno = EIO;
            return abandon(QStringLiteral("the new file cannot be written"));
        }
        data += n;
        left -= n;
    }
    if (::fchmod(fd, 0600) != 0)
        return abandon(QStringLiteral("the new file's permissions cannot be set"));
    if (::fsync(fd) != 0)
        return abandon(QStringLiteral("the new file cannot be written to disk"));
    if (::close(fd) != 0) {
        const int error = errno;
        ::unlink(tempName.constData());
        return Fail(problem, QStringLiteral("the new file cannot be written"), error);
    }
    if (::rename(tempName.constData(), QFile::encodeName(path).constData()) != 0) {
        const int error = errno;
        ::unlink(tempName.constData());
        return Fail(problem, QStringLiteral("the new file cannot replace the old one"), error);
    }
    return SyncFolder(folder, problem);
}

bool RemoveFileDurably(const QString& path, QString* problem) {
    if (::unlink(QFile::encodeName(path).constData()) != 0) {
        if (errno == ENOENT)
            return true;
        return Fail(problem, QStringLiteral("the file cannot be removed"), errno);
    }
    return SyncFolder(FolderOf(path), problem);
}
