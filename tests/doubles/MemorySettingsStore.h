#pragma once

#include "platform/SettingsStore.h"
#include "settings/IniDocument.h"

#include <QStringList>

#include <map>

// In-memory store with the same name rules as the real one: section and key names
// compare without regard to case and keep the case of their first write.
class MemorySettingsStore : public SettingsStore {
public:
    QString GetSetting(const QString& app, const QString& section, const QString& key) override {
        const QString* value = files_[app].value(section, key);
        return value ? *value : QString();
    }
    void SaveSetting(const QString& app, const QString& section, const QString& key,
                     const QString& value) override {
        Write(app).set(section, key, value);
    }
    void DeleteSetting(const QString& app, const QString& section, const QString& key) override {
        Write(app).remove(section, key);
    }
    void DeleteSection(const QString& app, const QString& section) override {
        Write(app).removeSection(section);
    }
    void DeleteAll(const QString& app) override { Write(app).clear(); }
    QStringList SectionKeys(const QString& app, const QString& section) override {
        return KeysOf(files_[app], section);
    }

    // Every key of a section as stored, in write order, "key=value" each.
    QStringList Dump(const QString& app, const QString& section) {
        QStringList out;
        for (const auto& s : files_[app].sections())
            for (const auto& e : s.entries)
                if (s.folded == section.toCaseFolded())
                    out << e.name + "=" + e.value;
        return out;
    }
    bool IsEmpty(const QString& app) { return files_[app].isEmpty(); }
    int writes = 0;

private:
    IniDocument& Write(const QString& app) {
        ++writes;
        return files_[app];
    }
    std::map<QString, IniDocument> files_;
};
