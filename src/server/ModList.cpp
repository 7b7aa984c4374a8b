#include "server/ModList.h"

#include "platform/FolderList.h"

QStringList UsableMods(const QString& gameDir) {
    QString mods;
    for (const QString& folder : ListFolders(gameDir))
        if (folder.compare(QLatin1String("mods"), Qt::CaseInsensitive) == 0) {
            mods = FolderText(gameDir) + folder + u'/';
            break;
        }
    QStringList usable;
    if (mods.isEmpty())
        return usable;
    for (const QString& mod : ListFolders(mods))
        if (!ListFiles(mods + mod, QStringLiteral("*.vpp")).isEmpty())
            usable << mod;
    return usable;
}
