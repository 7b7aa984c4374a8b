#include "settings/IniSettingsStore.h"

#include "settings/AtomicFile.h"

#include <QDir>
#include <QFile>

namespace {

// Removes the temporary files that a write cut short (by a crash or a kill) left behind.
void RemoveStrayTemporaryFiles(const QString& folder, const QString& path) {
    const QString prefix = QFileInfo(TemporaryFilePrefix(path)).fileName();
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names)
        if (name.size() == prefix.size() + 6 && name.startsWith(prefix))
            QFile::remove(folder + u'/' + name);
}

QString WriteFailureMessage(const QString& path, const QString& problem) {
    return QStringLiteral("Hostwarden cannot save its settings to %1 (%2).\n\n"
                          "The settings file is left as it was. Your changes stay in effect "
                          "while Hostwarden runs and are saved with the next change that "
                          "can be written.")
        .arg(path, problem);
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
    RemoveStrayTemporaryFiles(folder_, path);

    QFile file(path);
    if (!file.exists())
        return f;
    if (!file.open(QIODevice::ReadOnly)) {
        f.error = SettingsLoadError{path, 0, file.errorString()};
        return f;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        f.error = SettingsLoadError{path, 0, file.errorString()};
        return f;
    }
    if (auto problem = ParseIni(bytes, f.doc))
        f.error = SettingsLoadError{path, problem->line, problem->reason};
    return f;
}

void IniSettingsStore::Persist(const QString& app, AppFile& f, bool changed) {
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

QStringList IniSettingsStore::SectionKeys(const QString& app, const QString& section) {
    return KeysOf(Open(app).doc, section);
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
