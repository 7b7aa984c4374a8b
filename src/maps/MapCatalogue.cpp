#include "maps/MapCatalogue.h"

#include "maps/VppArchive.h"
#include "platform/FolderList.h"

#include <QFile>

#include <dirent.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <strings.h>
#include <vector>

namespace {

// An open folder listing, closed when it goes.
class Listing {
public:
    explicit Listing(const QString& folder)
        : dir_(::opendir(QFile::encodeName(folder.isEmpty() ? QStringLiteral(".") : folder))) {}
    ~Listing() {
        if (dir_)
            ::closedir(dir_);
    }
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;
    const dirent* Next() { return dir_ ? ::readdir(dir_) : nullptr; }

private:
    DIR* dir_;
};

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
        const QString parent = found;
        const QString prefix = parent.endsWith(QLatin1Char('/')) ? parent : parent + '/';
        found.clear();
        const QByteArray wanted = QFile::encodeName(part);
        QStringList matches;
        Listing listing(parent);
        while (const dirent* entry = listing.Next())
            if (entry->d_type == DT_DIR || entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN)
                if (::strcasecmp(entry->d_name, wanted.constData()) == 0)
                    matches << QFile::decodeName(entry->d_name);
        // The name as written wins over other spellings; among those, the first by name.
        std::sort(matches.begin(), matches.end(), NameOrder);
        if (matches.contains(part))
            found = prefix + part;
        else if (!matches.isEmpty())
            found = prefix + matches.first();
        if (found.isEmpty())
            return {};
    }
    return found;
}
