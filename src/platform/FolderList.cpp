#include "platform/FolderList.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

template <class Keep> QStringList List(const QString& folder, Keep keep) {
    QStringList names;
    std::error_code error;
    fs::directory_iterator it(fs::path(folder.toStdString()), error), end;
    // An entry that cannot be looked at is left out; an unreadable folder lists nothing.
    for (; !error && it != end; it.increment(error)) {
        const QString name = QString::fromStdString(it->path().filename().string());
        if (keep(*it, name))
            names << name;
    }
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        const int c = a.compare(b, Qt::CaseInsensitive);
        return c != 0 ? c < 0 : a < b;
    });
    return names;
}

bool Match(QStringView name, QStringView pattern) {
    // Iterative match with one backtrack point: the last '*' seen.
    qsizetype n = 0, p = 0, starP = -1, starN = 0;
    while (n < name.size()) {
        if (p < pattern.size() &&
            (pattern[p] == u'?' || pattern[p].toCaseFolded() == name[n].toCaseFolded())) {
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

QStringList ListFolders(const QString& folder) {
    return List(folder, [](const fs::directory_entry& entry, const QString&) {
        std::error_code error;
        return entry.is_directory(error);
    });
}

QStringList ListFiles(const QString& folder, const QString& pattern) {
    return List(folder, [&](const fs::directory_entry& entry, const QString& name) {
        std::error_code error;
        return entry.is_regular_file(error) && Match(name, pattern);
    });
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
