#include "platform/posix/NoCasePath.h"

#include <QFile>
#include <QStringList>

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

fs::path ToPath(const QString& text) {
    return fs::path(QFile::encodeName(text).toStdString());
}

QString FromPath(const fs::path& path) {
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

bool Exists(const fs::path& path) {
    std::error_code ec;
    return fs::exists(fs::symlink_status(path, ec));
}

std::optional<fs::path> MatchInFolder(const fs::path& folder, const QString& name) {
    std::error_code ec;
    fs::directory_iterator it(folder.empty() ? fs::path(".") : folder, ec);
    if (ec)
        return std::nullopt;
    std::optional<QString> best;
    for (; it != fs::directory_iterator(); it.increment(ec)) {
        if (ec)
            break;
        const QString entry = FromPath(it->path().filename());
        if (entry.compare(name, Qt::CaseInsensitive) != 0)
            continue;
        if (!best || entry < *best)
            best = entry;
    }
    if (!best)
        return std::nullopt;
    return folder / ToPath(*best);
}

} // namespace

std::optional<QString> FindPathNoCase(const QString& path) {
    if (path.isEmpty())
        return std::nullopt;
    if (Exists(ToPath(path)))
        return path;
    QString normal = path;
    normal.replace(QLatin1Char('\\'), QLatin1Char('/'));

    fs::path found = normal.startsWith(QLatin1Char('/')) ? fs::path("/") : fs::path();
    const QStringList parts = normal.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        const fs::path asWritten = found / ToPath(part);
        if (part == QLatin1String(".") || part == QLatin1String("..") || Exists(asWritten)) {
            found = asWritten;
            continue;
        }
        const std::optional<fs::path> match = MatchInFolder(found, part);
        if (!match)
            return std::nullopt;
        found = *match;
    }
    return FromPath(found);
}
