#include "platform/FolderList.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>

namespace {

// What an entry is, following a symbolic link; DT_UNKNOWN when it cannot be looked at.
unsigned char EntryType(DIR* dir, const dirent& entry) {
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return entry.d_type;
    struct stat info {};
    if (::fstatat(::dirfd(dir), entry.d_name, &info, 0) != 0)
        return DT_UNKNOWN;
    return S_ISREG(info.st_mode) ? DT_REG : S_ISDIR(info.st_mode) ? DT_DIR : DT_UNKNOWN;
}

template <class Keep> QStringList List(const QString& folder, unsigned char type, Keep keep) {
    QStringList names;
    DIR* dir = ::opendir(folder.toUtf8().constData());
    // An entry that cannot be looked at is left out; an unreadable folder lists nothing.
    if (!dir)
        return names;
    while (const dirent* entry = ::readdir(dir)) {
        if (!std::strcmp(entry->d_name, ".") || !std::strcmp(entry->d_name, ".."))
            continue;
        if (EntryType(dir, *entry) != type)
            continue;
        QString name = QString::fromUtf8(entry->d_name);
        if (keep(name))
            names << std::move(name);
    }
    ::closedir(dir);
    std::sort(names.begin(), names.end(), NameOrder);
    return names;
}

char16_t AsciiLower(char16_t ch) {
    return ch >= u'A' && ch <= u'Z' ? ch + (u'a' - u'A') : ch;
}

char16_t Folded(QChar ch) {
    return ch.unicode() < 0x80 ? AsciiLower(ch.unicode()) : ch.toCaseFolded().unicode();
}

bool Match(QStringView name, QStringView pattern) {
    // Iterative match with one backtrack point: the last '*' seen.
    qsizetype n = 0, p = 0, starP = -1, starN = 0;
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == u'?' || Folded(pattern[p]) == Folded(name[n]))) {
            ++n;
            ++p;
        } else if (p < pattern.size() && pattern[p] == u'*') {
            starP = p++;
            starN = n;
        } else if (starP >= 0) {
            p = starP + 1;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

} // namespace

bool NameOrder(const QString& a, const QString& b) {
    // Plain ASCII, as nearly all names are, compares inline; the first difference in case
    // decides between names that are otherwise the same.
    const qsizetype common = std::min(a.size(), b.size());
    int byCase = 0;
    for (qsizetype i = 0; i < common; ++i) {
        const char16_t x = a[i].unicode(), y = b[i].unicode();
        if (x == y)
            continue;
        if (x >= 0x80 || y >= 0x80) {
            const int folded = a.compare(b, Qt::CaseInsensitive);
            return folded != 0 ? folded < 0 : a < b;
        }
        const char16_t lowerX = AsciiLower(x), lowerY = AsciiLower(y);
        if (lowerX != lowerY)
            return lowerX < lowerY;
        if (!byCase)
            byCase = x < y ? -1 : 1;
    }
    return a.size() != b.size() ? a.size() < b.size() : byCase < 0;
}

QStringList ListFolders(const QString& folder) {
    return List(folder, DT_DIR, [](const QString&) { return true; });
}

QStringList ListFiles(const QString& folder, const QString& pattern) {
    return List(folder, DT_REG, [&](const QString& name) { return Match(name, pattern); });
}

bool MatchesPattern(const QString& name, const QString& pattern) {
    return Match(name, pattern);
}

QString FolderText(const QString& folder) {
    QString text = folder;
    while (text.endsWith(u'/'))
        text.chop(1);
    return text + u'/';
}
