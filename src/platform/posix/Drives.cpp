#include "platform/posix/Drives.h"

#include <QDir>
#include <QFile>
#include <QSet>

namespace {

bool IsPseudo(const QString& type, const QString& point) {
    static const QSet<QString> kTypes = {
        "proc",        "sysfs",   "devtmpfs",        "devpts",     "tmpfs",     "ramfs",
        "cgroup",      "cgroup2", "securityfs",      "debugfs",    "tracefs",   "pstore",
        "bpf",         "mqueue",  "hugetlbfs",       "configfs",   "fusectl",   "autofs",
        "binfmt_misc", "nsfs",    "efivarfs",        "rpc_pipefs", "selinuxfs", "squashfs",
        "overlay",     "devfs",   "fuse.gvfsd-fuse", "fuse.portal"};
    for (const char* system : {"/proc", "/sys", "/dev", "/run/user"})
        if (point == QLatin1String(system) || point.startsWith(QLatin1String(system) + '/'))
            return true;
    return kTypes.contains(type);
}

// The mount table writes blanks, tabs, new lines and backslashes as octal escapes.
QString Unescape(const QString& field) {
    QString out;
    for (qsizetype i = 0; i < field.size(); ++i) {
        bool ok = false;
        const int code = field[i] == u'\\' ? field.mid(i + 1, 3).toInt(&ok, 8) : 0;
        if (ok && field.mid(i + 1, 3).size() == 3) {
            out += QChar(code);
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

} // namespace

QStringList DrivesFromMounts(const QString& mountTable, const QString& home) {
    QStringList drives{QStringLiteral("/")};
    if (!home.isEmpty() && !drives.contains(home))
        drives << home;
    for (const QString& line : mountTable.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList fields = line.split(u' ', Qt::SkipEmptyParts);
        if (fields.size() < 3)
            continue;
        const QString point = Unescape(fields[1]);
        if (point.startsWith(u'/') && !IsPseudo(fields[2], point) && !drives.contains(point))
            drives << point;
    }
    return drives;
}

QStringList ListDrives() {
    QFile mounts(QStringLiteral("/proc/self/mounts"));
    const QString table =
        mounts.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(mounts.readAll()) : QString();
    return DrivesFromMounts(table, QDir::homePath());
}
