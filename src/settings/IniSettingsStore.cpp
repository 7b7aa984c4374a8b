#include "settings/IniSettingsStore.h"

#include "settings/AtomicFile.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Removes the temporary files that a write cut short (by a crash or a kill) left behind.
void RemoveStrayTemporaryFiles(const QString& path) {
    const QFileInfo prefix(TemporaryFilePrefix(path));
    const QString folder = prefix.path();
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names)
        if (name.size() == prefix.fileName().size() + 6 && name.startsWith(prefix.fileName()))
            QFile::remove(folder + u'/' + name);
}

QString WriteFailureMessage(const QString& path, const QString& problem) {
    return QStringLiteral("Hostwarden cannot save its settings to %1 (%2).\n\n"
                          "The settings file is left as it was. Your changes stay in effect "
                          "while Hostwarden runs and are saved with the next change that "
                          "can be written.")
        .arg(path, problem);
}

// Reads a whole regular file. Anything else (a FIFO, a device, a folder) is refused
// before a byte is read, so that start-up can neither block nor read without end.
std::optional<QString> ReadRegularFile(const QString& path, QByteArray& bytes) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return QString::fromLocal8Bit(std::strerror(errno));
    struct stat st {};
    std::optional<QString> problem;
    if (::fstat(fd, &st) != 0)
        problem = QString::fromLocal8Bit(std::strerror(errno));
    else if (!S_ISREG(st.st_mode))
        problem = QStringLiteral("it is not a regular file");
    else if (st.st_size > IniSettingsStore::kMaxSettingsFileSize)
        problem = QStringLiteral("it is larger than 64 MiB");
    else {
        bytes.resize(qsizetype(st.st_size));
        qsizetype got = 0;
        // The file may grow while it is read; the limit holds all the same.
        while (!problem) {
            if (got == bytes.size()) {
                if (bytes.size() > IniSettingsStore::kMaxSettingsFileSize) {
                    problem = QStringLiteral("it is larger than 64 MiB");
                    break;
                }
                bytes.resize(bytes.size() + 4096);
            }
            const ssize_t n = ::read(fd, bytes.data() + got, size_t(bytes.size() - got));
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
                problem = QString::fromLocal8Bit(std::strerror(errno));
            else if (n == 0)
                break;
            else
                got += n;
        }
        bytes.truncate(got);
    }
    ::close(fd);
    return problem;
}

} // namespace

QString SettingsLoadErrorMessage(const SettingsLoadError& error) {
    const QString where = error.line > 0
                              ? QStringLiteral("line %1: %2").arg(error.line).arg(error.reason)
                              : error.reason;
    return QStringLiteral("The settings file %1 cannot be read (%2).\n\n"
                          "It has been left unchanged. Correct or remove it, then start "
                          "Hostwarden again.")
        .arg(error.path, where);
}

IniSettingsStore::IniSettingsStore() : IniSettingsStore(DefaultFolder()) {}

IniSettingsStore::IniSettingsStore(const QString& folder) : folder_(folder) {
    while (folder_.size() > 1 && folder_.endsWith(u'/'))
        folder_.chop(1);
}

QString IniSettingsStore::DefaultFolder() {
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QDir::homePath() + QStringLiteral("/.config");
    return base + QStringLiteral("/Hostwarden");
}

QString IniSettingsStore::filePath(const QString& app) const {
    QString name = app;
    name.replace(u'/', u'_').replace(QChar(u'\0'), u'_');
    return folder_ + u'/' + name + QStringLiteral(".ini");
}

std::optional<SettingsLoadError> IniSettingsStore::loadError(const QString& app) {
    return Open(app).error;
}

IniSettingsStore::AppFile& IniSettingsStore::Open(const QString& app) {
    if (auto it = apps_.find(app); it != apps_.end())
        return it->second;
    AppFile& f = apps_[app];
    const QString path = filePath(app);
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0 &&
        (errno == ENOENT || errno == ENOTDIR)) {
        RemoveStrayTemporaryFiles(path);
        return f; // nothing stored yet (a link to no file counts as none)
    }
    QByteArray bytes;
    if (auto problem = ReadRegularFile(path, bytes)) {
        f.error = SettingsLoadError{path, 0, *problem};
        return f;
    }
    // Only now: a link may lead anywhere, and only beside a settings file is ours to tidy.
    RemoveStrayTemporaryFiles(path);
    if (auto problem = ParseIni(bytes, f.doc))
        f.error = SettingsLoadError{path, problem->line, problem->reason};
    return f;
}

void IniSettingsStore::Persist(const QString& app, AppFile& f, bool changed) {
    if (batchDepth_ > 0) {
        f.pending |= changed;
        return;
    }
    if (!changed && !f.unsaved)
        return;
    const QString path = filePath(app);
    QString problem;
    // Nothing stored means no file.
    const bool ok = f.doc.isEmpty() ? RemoveFileDurably(path, &problem)
                                    : WriteFileAtomically(path, SerializeIni(f.doc), &problem);
    f.unsaved = !ok;
    if (ok) {
        f.reported = false;
        return;
    }
    if (!f.reported) {
        f.reported = true;
        if (onError_)
            onError_(WriteFailureMessage(path, problem));
    }
}

QString IniSettingsStore::GetSetting(const QString& app, const QString& section,
                                     const QString& key) {
    const QString* value = Open(app).doc.value(section, key);
    return value ? *value : QString();
}

void IniSettingsStore::SaveSetting(const QString& app, const QString& section, const QString& key,
                                   const QString& value) {
    AppFile& f = Open(app);
    if (!f.error)
        Persist(app, f, f.doc.set(section, key, value));
}

void IniSettingsStore::DeleteSetting(const QString& app, const QString& section,
                                     const QString& key) {
    AppFile& f = Open(app);
    if (!f.error)
        Persist(app, f, f.doc.remove(section, key));
}

void IniSettingsStore::DeleteSection(const QString& app, const QString& section) {
    AppFile& f = Open(app);
    if (!f.error)
        Persist(app, f, f.doc.removeSection(section));
}

void IniSettingsStore::DeleteAll(const QString& app) {
    AppFile& f = Open(app);
    if (f.error)
        return;
    f.doc.clear();
    // Always remove: a file put there by hand since the start goes as well.
    Persist(app, f, true);
}

QStringList IniSettingsStore::KeyNames(const QString& app, const QString& section) {
    QStringList names;
    if (const IniDocument::Section* s = Open(app).doc.section(section))
        for (const IniDocument::Entry& e : s->entries)
            names << e.name;
    return names;
}

void IniSettingsStore::EndBatch() {
    if (batchDepth_ == 0 || --batchDepth_ > 0)
        return;
    for (auto& [app, f] : apps_) {
        if (f.error)
            continue;
        const bool changed = f.pending;
        f.pending = false;
        Persist(app, f, changed);
    }
}
