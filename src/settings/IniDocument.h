#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

// The contents of one settings file: sections of key=value entries, both in
// first-write order. Names are found by their case-folded form, through an index so
// that lookups do not grow with the file, and keep the spelling of their first write.
class IniDocument {
public:
    struct Entry {
        QString name;
        QString folded;
        QString value;
    };
    struct Section {
        QString name;
        QString folded;
        std::vector<Entry> entries;
        QHash<QString, size_t> index; // folded key -> position in entries
    };

    // The stored value, or nullptr when the section or key is absent.
    const QString* value(const QString& section, const QString& key) const;
    // Each returns true when the document changed.
    bool set(const QString& section, const QString& key, const QString& value);
    bool remove(const QString& section, const QString& key);
    bool removeSection(const QString& section);
    bool clear();

    bool isEmpty() const { return sections_.empty(); }
    const std::vector<Section>& sections() const { return sections_; }
    const Section* section(const QString& name) const;

private:
    Section* findSection(const QString& folded);
    void reindex();
    std::vector<Section> sections_;
    QHash<QString, size_t> index_; // folded section name -> position in sections_
};

struct IniParseError {
    int line = 0;
    QString reason;
};

// Reads UTF-8 file bytes into doc. On failure doc is left empty and the first
// offending line is reported.
std::optional<IniParseError> ParseIni(const QByteArray& bytes, IniDocument& doc);

// The file text of doc: "[Section]" headers and "key=value" lines; names and values
// that would not read back as they are go inside double quotes with backslash escapes.
QByteArray SerializeIni(const IniDocument& doc);
