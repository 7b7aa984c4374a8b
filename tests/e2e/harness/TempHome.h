#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace e2e {

// A throw-away home folder for the program under test: HOME and XDG_CONFIG_HOME point
// into it, so its settings store lives there and nothing of the real user is touched.
class TempHome {
public:
    TempHome(); // throws std::runtime_error when no temporary folder can be made

    QString Path() const { return dir_.path(); }
    QString ConfigHome() const;
    // "HOME=…" and "XDG_CONFIG_HOME=…", for ProcessOptions::env.
    QStringList Environment() const;

    // The settings file of an application name: <config>/Hostwarden/<appName>.ini.
    QString SettingsFile(const QString& appName) const;
    // Seeds the settings file with `text` as it stands (UTF-8, "[Section]" headers,
    // "key=value" lines).
    void WriteSettings(const QString& appName, const QByteArray& text) const;
    // The settings file's bytes; empty when there is none.
    QByteArray ReadSettings(const QString& appName) const;
    bool HasSettings(const QString& appName) const;

private:
    QTemporaryDir dir_;
};

} // namespace e2e
