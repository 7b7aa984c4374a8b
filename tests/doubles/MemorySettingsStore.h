#pragma once

#include "platform/SettingsStore.h"

#include <QList>
#include <QPair>

// In-memory store with the same name rules as the real one: section and key names
// compare without regard to case and keep the case of their first write.
class MemorySettingsStore : public SettingsStore {
public:
    QString GetSetting(const QString& app, const QString& section, const QString& key) override;
    void SaveSetting(const QString& app, const QString& section, const QString& key,
                     const QString& value) override;
    void DeleteSetting(const QString& app, const QString& section, const QString& key) override;
    void DeleteSection(const QString& app, const QString& section) override;
    void DeleteAll(const QString& app) override;

    // Every key of a section as stored, in write order, "key=value" each.
    QStringList Dump(const QString& app, const QString& section) const;
    bool HasSection(const QString& app, const QString& section) const;
    bool IsEmpty(const QString& app) const;
    int writes = 0;

private:
    struct Section {
        QString app;
        QString name;
        QList<QPair<QString, QString>> keys;
    };
    Section* Find(const QString& app, const QString& section);
    const Section* Find(const QString& app, const QString& section) const;
    QList<Section> sections_;
};
