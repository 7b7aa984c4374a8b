#include "TempHome.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

namespace e2e {

TempHome::TempHome() {
    if (!dir_.isValid() || !QDir(dir_.path()).mkpath("config/Hostwarden"))
        throw std::runtime_error("cannot create a temporary home folder");
}

QString TempHome::ConfigHome() const {
    return dir_.filePath("config");
}

QStringList TempHome::Environment() const {
    return {"HOME=" + Path(), "XDG_CONFIG_HOME=" + ConfigHome()};
}

QString TempHome::SettingsFile(const QString& appName) const {
    return QDir(ConfigHome()).filePath("Hostwarden/" + appName + ".ini");
}

void TempHome::WriteSettings(const QString& appName, const QByteArray& text) const {
    QFile file(SettingsFile(appName));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text) != text.size())
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

QByteArray TempHome::ReadSettings(const QString& appName) const {
    QFile file(SettingsFile(appName));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool TempHome::HasSettings(const QString& appName) const {
    return QFile::exists(SettingsFile(appName));
}

} // namespace e2e
