#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace e2e {

// A private copy of the demo game directory, so tests that write its options file or
// start its server can run side by side. Removed with the object.
class GameCopy {
public:
    GameCopy();  // throws std::runtime_error when the copy cannot be made
    ~GameCopy(); // stops the servers left running in the copy
    GameCopy(const GameCopy&) = delete;
    GameCopy& operator=(const GameCopy&) = delete;

    // The folder as the Setup window stores it: with a trailing separator.
    QString GameDir() const;
    QString FilePath(const QString& name) const;
    // The file's bytes; empty when it is missing.
    QByteArray Read(const QString& name) const;
    // The file's lines without their ends; empty when it is missing.
    QStringList ReadLines(const QString& name) const;

    // Ends every server started in this folder that has not recorded its close
    // (the stand-in writes "started pid N" and "closed pid N" to events.txt).
    void StopServers() const;

private:
    QTemporaryDir dir_;
    QString path_;
};

} // namespace e2e
