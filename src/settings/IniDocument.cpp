#include "settings/IniDocument.h"

#include <QList>
#include <QStringDecoder>

#include <algorithm>

namespace {

bool IsBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

// C0 controls, DEL and C1 controls: written as escapes so that no editor or
// terminal can mangle them.
bool IsControl(QChar c) {
    const char16_t u = c.unicode();
    return u < 0x20 || (u >= 0x7F && u <= 0x9F);
}

QString TrimBlanks(const QString& s) {
    qsizetype begin = 0;
    qsizetype end = s.size();
    while (begin < end && IsBlank(s[begin]))
        ++begin;
    while (end > begin && IsBlank(s[end - 1]))
        --end;
    return s.mid(begin, end - begin);
}

bool HasControl(const QString& s) {
    return std::any_of(s.begin(), s.end(), IsControl);
}

bool ValueNeedsQuotes(const QString& v) {
    if (v.isEmpty())
        return false;
    if (IsBlank(v.front()) || IsBlank(v.back()) || v.front() == u'"')
        return true;
    return v.contains(u'\\') || HasControl(v);
}

bool KeyNeedsQuotes(const QString& k) {
    if (k.isEmpty() || IsBlank(k.front()) || IsBlank(k.back()))
        return true;
    const QChar first = k.front();
    if (first == u'"' || first == u';' || first == u'#' || first == u'[')
        return true;
    return k.contains(u'=') || HasControl(k);
}

// A header takes everything between its brackets, so only a line break or other
// control character, or a leading quote, needs the quoted form.
bool SectionNeedsQuotes(const QString& s) {
    return (!s.isEmpty() && s.front() == u'"') || HasControl(s);
}

QString Quote(const QString& s) {
    QString out;
    out.reserve(s.size() + 2);
    out += u'"';
    for (QChar c : s) {
        switch (c.unicode()) {
        case u'\\':
            out += u"\\\\";
            break;
        case u'"':
            out += u"\\\"";
            break;
        case u'\n':
            out += u"\\n";
            break;
        case u'\r':
            out += u"\\r";
            break;
        case u'\t':
            out += u"\\t";
            break;
        default:
            if (IsControl(c))
                out += QStringLiteral("\\x") +
                       QString::number(c.unicode(), 16).rightJustified(2, u'0').toUpper();
            else
                out += c;
        }
    }
    out += u'"';
    return out;
}

int HexDigit(QChar c) {
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    return -1;
}

// Reads a quoted text starting at s[pos] == '"'; on success pos is just past the
// closing quote.
bool Unquote(const QString& s, qsizetype& pos, QString& out, QString& reason) {
    out.clear();
    for (++pos; pos < s.size(); ++pos) {
        const QChar c = s[pos];
        if (c == u'"') {
            ++pos;
            return true;
        }
        if (c != u'\\') {
            out += c;
            continue;
        }
        if (++pos >= s.size())
            break;
        switch (s[pos].unicode()) {
        case u'\\':
            out += u'\\';
            break;
        case u'"':
            out += u'"';
            break;
        case u'n':
            out += u'\n';
            break;
        case u'r':
            out += u'\r';
            break;
        case u't':
            out += u'\t';
            break;
        case u'x': {
            const int hi = pos + 1 < s.size() ? HexDigit(s[pos + 1]) : -1;
            const int lo = pos + 2 < s.size() ? HexDigit(s[pos + 2]) : -1;
            if (hi < 0 || lo < 0) {
                reason = QStringLiteral("\"\\x\" must be followed by two hexadecimal digits");
                return false;
            }
            out += QChar(char16_t(hi * 16 + lo));
            pos += 2;
            break;
        }
        default:
            reason = QStringLiteral("unknown escape \"\\%1\" in quoted text").arg(s[pos]);
            return false;
        }
    }
    reason = QStringLiteral("quoted text has no closing double quote");
    return false;
}

QString DecodeLine(const QByteArray& bytes, bool& ok) {
    // ConvertInitialBom: a U+FEFF that starts a line is text, not a byte-order mark.
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    ok = !decoder.hasError();
    return text;
}

} // namespace

IniDocument::Section* IniDocument::findSection(const QString& folded) {
    for (Section& s : sections_)
        if (s.folded == folded)
            return &s;
    return nullptr;
}

const QString* IniDocument::value(const QString& section, const QString& key) const {
    const QString sectionFolded = section.toCaseFolded();
    for (const Section& s : sections_) {
        if (s.folded != sectionFolded)
            continue;
        const QString keyFolded = key.toCaseFolded();
        for (const Entry& e : s.entries)
            if (e.folded == keyFolded)
                return &e.value;
        return nullptr;
    }
    return nullptr;
}

bool IniDocument::set(const QString& section, const QString& key, const QString& value) {
    const QString sectionFolded = section.toCaseFolded();
    Section* s = findSection(sectionFolded);
    if (!s)
        s = &sections_.emplace_back(Section{section, sectionFolded, {}});
    const QString keyFolded = key.toCaseFolded();
    for (Entry& e : s->entries)
        if (e.folded == keyFolded) {
            if (e.value == value)
                return false;
            e.value = value;
            return true;
        }
    s->entries.push_back(Entry{key, keyFolded, value});
    return true;
}

bool IniDocument::remove(const QString& section, const QString& key) {
    Section* s = findSection(section.toCaseFolded());
    if (!s)
        return false;
    const QString keyFolded = key.toCaseFolded();
    const auto removed =
        std::erase_if(s->entries, [&](const Entry& e) { return e.folded == keyFolded; });
    // A section whose last key goes is dropped, so the file keeps no empty headers.
    if (s->entries.empty())
        removeSection(section);
    return removed > 0;
}

bool IniDocument::removeSection(const QString& section) {
    const QString folded = section.toCaseFolded();
    return std::erase_if(sections_, [&](const Section& s) { return s.folded == folded; }) > 0;
}

bool IniDocument::clear() {
    const bool had = !sections_.empty();
    sections_.clear();
    return had;
}

std::optional<IniParseError> ParseIni(const QByteArray& bytes, IniDocument& doc) {
    doc.clear();
    QByteArray text = bytes;
    if (text.startsWith("\xEF\xBB\xBF"))
        text.remove(0, 3);
    QList<QByteArray> lines = text.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();

    QString section;
    bool inSection = false;
    auto fail = [&](int line, const QString& reason) {
        doc.clear();
        return IniParseError{line, reason};
    };
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const int lineNo = int(i) + 1;
        QByteArray raw = lines[i];
        if (raw.endsWith('\r'))
            raw.chop(1);
        bool ok = false;
        const QString line = TrimBlanks(DecodeLine(raw, ok));
        if (!ok)
            return fail(lineNo, QStringLiteral("the line is not valid UTF-8 text"));
        if (line.isEmpty() || line.front() == u';' || line.front() == u'#')
            continue;

        QString reason;
        if (line.front() == u'[') {
            if (line.size() < 2 || line.back() != u']')
                return fail(lineNo, QStringLiteral("a section header must end with \"]\""));
            section = line.mid(1, line.size() - 2);
            if (section.startsWith(u'"')) {
                const QString quoted = section;
                qsizetype pos = 0;
                if (!Unquote(quoted, pos, section, reason))
                    return fail(lineNo, reason);
                if (pos != quoted.size())
                    return fail(lineNo, QStringLiteral("text follows the quoted section name"));
            }
            inSection = true;
            continue;
        }

        QString key;
        qsizetype pos = 0;
        if (line.front() == u'"') {
            if (!Unquote(line, pos, key, reason))
                return fail(lineNo, reason);
            while (pos < line.size() && IsBlank(line[pos]))
                ++pos;
            if (pos >= line.size() || line[pos] != u'=')
                return fail(lineNo, QStringLiteral("a quoted key must be followed by \"=\""));
        } else {
            pos = line.indexOf(u'=');
            if (pos < 0)
                return fail(lineNo, QStringLiteral("the line is neither a [section] header, "
                                                   "a key=value line nor a comment"));
            key = TrimBlanks(line.left(pos));
        }
        if (!inSection)
            return fail(lineNo, QStringLiteral("a key comes before any [section] header"));

        QString value = TrimBlanks(line.mid(pos + 1));
        if (value.startsWith(u'"')) {
            const QString quoted = value;
            qsizetype vpos = 0;
            if (!Unquote(quoted, vpos, value, reason))
                return fail(lineNo, reason);
            if (vpos != quoted.size())
                return fail(lineNo, QStringLiteral("text follows the quoted value"));
        }
        // A key repeated by hand keeps its first place and takes the later value.
        doc.set(section, key, value);
    }
    return std::nullopt;
}

QByteArray SerializeIni(const IniDocument& doc) {
    QString out;
    for (const IniDocument::Section& s : doc.sections()) {
        if (!out.isEmpty())
            out += u'\n';
        out += u'[';
        out += SectionNeedsQuotes(s.name) ? Quote(s.name) : s.name;
        out += u"]\n";
        for (const IniDocument::Entry& e : s.entries) {
            out += KeyNeedsQuotes(e.name) ? Quote(e.name) : e.name;
            out += u'=';
            out += ValueNeedsQuotes(e.value) ? Quote(e.value) : e.value;
            out += u'\n';
        }
    }
    return out.toUtf8();
}

QStringList KeysOf(const IniDocument& doc, const QString& section) {
    QStringList keys;
    const QString folded = section.toCaseFolded();
    for (const IniDocument::Section& s : doc.sections())
        if (s.folded == folded)
            for (const IniDocument::Entry& e : s.entries)
                keys << e.name;
    return keys;
}
