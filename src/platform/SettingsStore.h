#pragma once

#include <QString>
#include <QStringList>

// Per-user persistent text values addressed by (application, section, key).
// Section and key names compare without regard to letter case; an absent key reads
// as the empty text.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    virtual QString GetSetting(const QString& app, const QString& section, const QString& key) = 0;
    virtual void SaveSetting(const QString& app, const QString& section, const QString& key,
                             const QString& value) = 0;
    virtual void DeleteSetting(const QString& app, const QString& section, const QString& key) = 0;
    virtual void DeleteSection(const QString& app, const QString& section) = 0;
    virtual void DeleteAll(const QString& app) = 0;
    // The key names of a section as stored, empty when the section is absent.
    virtual QStringList SectionKeys(const QString& app, const QString& section) = 0;
};
