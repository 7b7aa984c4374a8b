#include "MemorySettingsStore.h"

namespace {
bool Same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}
} // namespace

MemorySettingsStore::Section* MemorySettingsStore::Find(const QString& app,
                                                        const QString& section) {
    for (auto& s : sections_)
        if (s.app == app && Same(s.name, section))
            return &s;
    return nullptr;
}

const MemorySettingsStore::Section* MemorySettingsStore::Find(const QString& app,
                                                              const QString& section) const {
    return const_cast<MemorySettingsStore*>(this)->Find(app, section);
}

QString MemorySettingsStore::GetSetting(const QString& app, const QString& section,
                                        const QString& key) {
    if (const Section* s = Find(app, section))
        for (const auto& kv : s->keys)
            if (Same(kv.first, key))
                return kv.second;
    return {};
}

void MemorySettingsStore::SaveSetting(const QString& app, const QString& section,
                                      const QString& key, const QString& value) {
    ++writes;
    Section* s = Find(app, section);
    if (!s) {
        sections_.append({app, section, {}});
        s = &sections_.last();
    }
    for (auto& kv : s->keys)
        if (Same(kv.first, key)) {
            kv.second = value;
            return;
        }
    s->keys.append({key, value});
}

void MemorySettingsStore::DeleteSetting(const QString& app, const QString& section,
                                        const QString& key) {
    ++writes;
    if (Section* s = Find(app, section))
        s->keys.removeIf([&](const auto& kv) { return Same(kv.first, key); });
}

void MemorySettingsStore::DeleteSection(const QString& app, const QString& section) {
    ++writes;
    sections_.removeIf([&](const Section& s) { return s.app == app && Same(s.name, section); });
}

void MemorySettingsStore::DeleteAll(const QString& app) {
    ++writes;
    sections_.removeIf([&](const Section& s) { return s.app == app; });
}

QStringList MemorySettingsStore::Dump(const QString& app, const QString& section) const {
    QStringList out;
    if (const Section* s = Find(app, section))
        for (const auto& kv : s->keys)
            out << kv.first + "=" + kv.second;
    return out;
}

bool MemorySettingsStore::HasSection(const QString& app, const QString& section) const {
    return Find(app, section) != nullptr;
}

bool MemorySettingsStore::IsEmpty(const QString& app) const {
    for (const auto& s : sections_)
        if (s.app == app)
            return false;
    return true;
}
