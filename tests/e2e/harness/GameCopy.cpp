#include "GameCopy.h"

#include "Artifacts.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <csignal>

namespace e2e {

GameCopy::GameCopy() {
    if (!dir_.isValid())
        throw std::runtime_error("cannot create a temporary folder for the game");
    path_ = dir_.filePath("game");
    std::error_code error;
    // Copies keep their permissions, so RF.EXE stays executable.
    std::filesystem::copy(DemoGameDir().toStdString(), path_.toStdString(),
                          std::filesystem::copy_options::recursive, error);
    if (error)
        throw std::runtime_error("cannot copy the demo game: " + error.message());
}

GameCopy::~GameCopy() {
    StopServers();
}

QString GameCopy::GameDir() const {
    return path_ + "/";
}

QString GameCopy::FilePath(const QString& name) const {
    return QDir(path_).filePath(name);
}

QByteArray GameCopy::Read(const QString& name) const {
    QFile file(FilePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList GameCopy::ReadLines(const QString& name) const {
    return QString::fromUtf8(Read(name)).split('\n', Qt::SkipEmptyParts);
}

void GameCopy::StopServers() const {
    QSet<int> running;
    for (const QString& line : ReadLines("events.txt")) {
        const QStringList words = line.split(' ');
        if (words.size() != 3 || words[1] != "pid")
            continue;
        if (words[0] == "started")
            running.insert(words[2].toInt());
        else if (words[0] == "closed")
            running.remove(words[2].toInt());
    }
    for (int pid : running)
        if (pid > 1)
            ::kill(pid, SIGTERM);
}

} // namespace e2e
