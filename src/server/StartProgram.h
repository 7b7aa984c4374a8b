#pragma once

#include <QString>

#include <cstdint>
#include <optional>

class ProcessLauncher;

// A command line cut into the program file, its parameters and the folder it runs in.
struct CommandSplit {
    QString program;
    QString parameters;
    QString workingDirectory;
};

// Cuts `commandLine` after its program part: after a leading quoted path (whose quotes
// are then removed from `commandLine` itself) or at the first blank. The working
// directory is the program's folder ("\" and "/" both separate folders; a root keeps
// its separator), or `currentDir` when the program part names no folder.
CommandSplit SplitCommandLine(QString& commandLine, const QString& currentDir);

// Starts the program of `commandLine`; when that fails with a code below 32 the whole
// (unquoted) line is started as it stands. Returns the first start's result; the
// whole-line start's result goes to `fallbackResult` when it ran.
std::int32_t StartProgram(ProcessLauncher& launcher, QString& commandLine, std::int32_t windowStyle,
                          std::optional<QString> workingDirectory = {},
                          std::int32_t* fallbackResult = nullptr);
