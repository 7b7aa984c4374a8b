#pragma once

#include <QString>
#include <QStringList>

// The folder and file lists of the dialogs: names only, sorted by name without regard to
// case. A folder that is missing or cannot be read lists nothing.
QStringList ListFolders(const QString& folder);
// The plain files of `folder` whose names match `pattern` without regard to case.
QStringList ListFiles(const QString& folder, const QString& pattern);
// The lists' order: by name without regard to case, then by case.
bool NameOrder(const QString& a, const QString& b);

// A wildcard pattern as file lists take it: '*' any run of characters, '?' any one;
// letter case does not count.
bool MatchesPattern(const QString& name, const QString& pattern);

// `folder` as a directory text: ending in one "/", a root as "/".
QString FolderText(const QString& folder);
