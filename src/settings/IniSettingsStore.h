#pragma once

#include "platform/SettingsStore.h"
#include "settings/IniDocument.h"

#include <QString>

#include <functional>
#include <map>
#include <optional>

// Why a settings file was not taken in. line is 0 when the file could not be opened.
struct SettingsLoadError {
    QString path;
    int line = 0;
    QString reason;
};

// The message for the operator when the settings file cannot be read.
QString SettingsLoadErrorMessage(const SettingsLoadError& error);

// One INI file per application name, "<folder>/<app>.ini". Each file is read once, on
// the first use of its application, and every change is written through at once by
// replacing the whole file atomically.
//
// A file that cannot be read is never written: its application reads as empty, every
// write and delete does nothing, and loadError() says why. A write that fails keeps
// the old file; the change still holds in memory, and the error handler is told once
// until a write succeeds again (the next write then saves everything).
class IniSettingsStore : public SettingsStore {
public:
    using ErrorHandler = std::function<void(const QString& message)>;

    // Files in DefaultFolder().
    IniSettingsStore();
    // Files directly in folder.
    explicit IniSettingsStore(const QString& folder);

    // $XDG_CONFIG_HOME/Hostwarden, or $HOME/.config/Hostwarden when that variable is
    // unset, empty or not an absolute path.
    static QString DefaultFolder();

    QString filePath(const QString& app) const;
    std::optional<SettingsLoadError> loadError(const QString& app);
    void setErrorHandler(ErrorHandler handler) { onError_ = std::move(handler); }

    QString GetSetting(const QString& app, const QString& section, const QString& key) override;
    void SaveSetting(const QString& app, const QString& section, const QString& key,
                     const QString& value) override;
    void DeleteSetting(const QString& app, const QString& section, const QString& key) override;
    void DeleteSection(const QString& app, const QString& section) override;
    void DeleteAll(const QString& app) override;
    QStringList SectionKeys(const QString& app, const QString& section) override;

private:
    struct AppFile {
        IniDocument doc;
        std::optional<SettingsLoadError> error;
        bool unsaved = false;  // the file lags behind doc after a failed write
        bool reported = false; // the handler has been told since the last good write
    };

    AppFile& Open(const QString& app);
    // Writes f to its file when it changed or an earlier write failed.
    void Persist(const QString& app, AppFile& f, bool changed);

    QString folder_;
    std::map<QString, AppFile> apps_;
    ErrorHandler onError_;
};
