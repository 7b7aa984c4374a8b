#include "maps/MapCatalogue.h"

#include "maps/VppArchive.h"
#include "platform/FolderList.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// The name lower-cased; plain ASCII, as level names nearly always are, in one pass.
QString LowerName(QByteArrayView name) {
    QString lower(name.size(), Qt::Uninitialized);
    auto* out = reinterpret_cast<char16_t*>(lower.data());
    for (const char byte : name) {
        if (byte & 0x80)
            return FromVppName(name).toLower();
        *out++ = char16_t(byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte);
    }
    return lower;
}

bool IsLevel(QByteArrayView name) {
    return name.size() >= 4 && std::memcmp(name.data() + name.size() - 4, ".rfl", 4) == 0;
}

} // namespace

bool ReadLevels(const QString& archivePath, QStringList& candidates) {
    return VisitVppDirectory(archivePath,
                             [&candidates](QByteArrayView name) {
                                 if (IsLevel(name))
                                     candidates.append(LowerName(name));
                             })
        .ok;
}

QStringList FilterLevels(const QStringList& candidates, bool ctf) {
    const QStringView prefix = ctf ? u"ctf" : u"dm";
    const auto kept = [prefix](const QString& level) {
        return level.size() >= prefix.size() &&
               std::equal(prefix.begin(), prefix.end(), level.constBegin());
    };
    const auto firstLeft = std::find_if_not(candidates.begin(), candidates.end(), kept);
    if (firstLeft == candidates.end())
        return candidates;
    QStringList levels;
    levels.reserve(candidates.size());
    std::copy(candidates.begin(), firstLeft, std::back_inserter(levels));
    std::copy_if(firstLeft, candidates.end(), std::back_inserter(levels), kept);
    return levels;
}

QString FolderPath(const QString& folder) {
    QString path = folder;
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

QString FindFolder(const QString& base, const QString& relative) {
    QString found = FolderPath(base);
    for (const QString& part : relative.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        // The name as written wins over other spellings; among those, the first by name.
        QString match;
        for (const QString& name : ListFolders(found.isEmpty() ? QStringLiteral(".") : found))
            if (name == part) {
                match = name;
                break;
            } else if (match.isEmpty() && name.compare(part, Qt::CaseInsensitive) == 0) {
                match = name;
            }
        if (match.isEmpty())
            return {};
        found = (found.endsWith(QLatin1Char('/')) ? found : found + '/') + match;
    }
    return found;
}
