#pragma once

#include <QString>
#include <QStringList>

// What the Browse dialog offers as drives on Linux: "/", the home folder, then the mount
// points of the mounted file systems that hold files (pseudo and memory file systems
// left out), in the order of the mount table, each once.
QStringList DrivesFromMounts(const QString& mountTable, const QString& home);

// The drives of this machine, from /proc/self/mounts.
QStringList ListDrives();
