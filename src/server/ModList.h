#pragma once

#include <QString>
#include <QStringList>

// The mods a launch can name: the sub-folders of the game directory's mods folder that
// directly hold a game package (*.vpp), in name order. The mods folder and the packages
// are found without regard to letter case; no mods folder gives no mods.
QStringList UsableMods(const QString& gameDir);
