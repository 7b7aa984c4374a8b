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
    QStringList KeyNames(const QString& app, const QString& section) override {
        QStringList names;
        if (const auto* s = files_[app].section(section))
            for (const auto& e : s->entries)
                names << e.name;
        return names;
    }
    void BeginBatch() override { ++batchDepth_; }
    void EndBatch() override { commits += --batchDepth_ == 0 && std::exchange(batched_, 0) > 0; }

    bool IsEmpty(const QString& app) { return files_[app].isEmpty(); }
    int writes = 0;
    int commits = 0; // how often a file store would have replaced its file

private:
    IniDocument& Write(const QString& app) {
        ++writes;
        ++(batchDepth_ > 0 ? batched_ : commits);
        return files_[app];
    }
    int batchDepth_ = 0, batched_ = 0;
    std::map<QString, IniDocument> files_;
};

// Every key of a section as stored, in write order, "key=value" each.
inline QStringList Dump(SettingsStore& store, const QString& app, const QString& section) {
    QStringList out;
    for (const QString& key : store.KeyNames(app, section))
        out << key + "=" + store.GetSetting(app, section, key);
    return out;
}
