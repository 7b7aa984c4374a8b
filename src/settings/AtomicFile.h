#pragma once

#include <QByteArray>
#include <QString>

// File operations that never leave a half-written file behind. Each returns false and
// describes the problem in plain words when it fails.

// Creates folder and its missing parents with mode 0700.
bool MakeFolders(const QString& folder, QString* problem);

enum class MissingFolder { Create, Fail };

// Replaces path with bytes: a temporary file next to it (name = path + ".tmp." + six
// characters), fsync, rename over path, fsync of the folder. The new file has mode
// 0600. When path is a symbolic link, the file it leads to is replaced and the link
// stays. On failure path is untouched and the temporary file is gone.
bool WriteFileAtomically(const QString& path, const QByteArray& bytes, QString* problem,
                         MissingFolder missing = MissingFolder::Create);

// Removes path (an absent file is fine) and makes the removal durable.
bool RemoveFileDurably(const QString& path, QString* problem);

// The prefix of the temporary files that WriteFileAtomically makes for path (beside the
// file that a link at path leads to).
QString TemporaryFilePrefix(const QString& path);
