#pragma once

#include <QString>
#include <QStringList>

// The levels the game can load, read from the names stored in its .vpp archives: the stock
// archive levelsm.vpp in the game directory and the custom packs in user_maps/multi/.
// Names on disk are matched without regard to case, as a game directory copied from
// Windows keeps its mixed-case names.

inline const QString kStockArchive = QStringLiteral("levelsm.vpp");
inline const QString kCustomFolder = QStringLiteral("user_maps/multi");
inline const QString kCtfPacks = QStringLiteral("ctf*.vpp");
inline const QString kDmPacks = QStringLiteral("DM*.vpp");

// Appends the archive's level names (entries ending in ".rfl", exactly) to `candidates`,
// lower-cased, in stored order. What an unreadable or cut-short archive holds up to where
// it breaks is kept; the result says whether the whole directory was read.
bool ReadLevels(const QString& archivePath, QStringList& candidates);

// The candidates of a game type, in order: CTF keeps "ctf…", DM and TeamDM keep "dm…".
// When every candidate is kept, the result shares the candidates' storage.
QStringList FilterLevels(const QStringList& candidates, bool ctf);

// A folder as a file list reports it: no trailing separator, except for the root.
QString FolderPath(const QString& folder);

// The folder `relative` (separated by '/') under `base`, each part matched without regard
// to case; empty when there is none.
QString FindFolder(const QString& base, const QString& relative);
