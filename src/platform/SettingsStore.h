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

    // The names of the keys a section holds, as first written.
    virtual QStringList KeyNames(const QString& app, const QString& section) = 0;

    // Changes made between BeginBatch and the matching EndBatch are kept together: they
    // reach the stored file as one replacement when the outermost batch ends.
    virtual void BeginBatch() {}
    virtual void EndBatch() {}
};

// One batch for the lifetime of the object.
class SettingsBatch {
public:
    explicit SettingsBatch(SettingsStore& store) : store_(store) { store_.BeginBatch(); }
    ~SettingsBatch() { store_.EndBatch(); }
    SettingsBatch(const SettingsBatch&) = delete;
    SettingsBatch& operator=(const SettingsBatch&) = delete;

private:
    SettingsStore& store_;
};
