#include "options/OptionsBackup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

namespace {

// Game directories compare as the same folder, however they were spelled.
QString Key(const QString& gameDir) {
    const QFileInfo info(gameDir);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : canonical;
}

QStringList Written(const QString& recordFile) {
    QFile file(recordFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

bool BackUpOptionsFile(const QString& gameDir, const QString& recordFile, QString* error) {
    const QString options = gameDir + QStringLiteral("dedicated_server.txt");
    const QString backup = options + QStringLiteral(".bak");
    if (!QFile::exists(options) || QFile::exists(backup) ||
        Written(recordFile).contains(Key(gameDir)))
        return true;
    QFile source(options);
    if (source.copy(backup))
        return true;
    if (error)
        *error = QStringLiteral("%1 could not be backed up to %2: %3")
                     .arg(options, backup, source.errorString());
    return false;
}

void RecordOptionsWritten(const QString& gameDir, const QString& recordFile) {
    const QString key = Key(gameDir);
    if (Written(recordFile).contains(key))
        return;
    QDir().mkpath(QFileInfo(recordFile).path());
    QFile file(recordFile);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        file.write((key + QLatin1Char('\n')).toUtf8());
}
