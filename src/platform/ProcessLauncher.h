#pragma once

#include <QString>

#include <cstdint>

// Starts programs. Results follow the launcher convention the rest of the program
// relies on: above 32 means started, 32 or less is an error code, 0 means no resources.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    // Starts `program` with the blank-separated `parameters` in `workingDirectory`.
    virtual std::int32_t ShellExecute(const QString& program, const QString& parameters,
                                      const QString& workingDirectory,
                                      std::int32_t windowStyle) = 0;

    // Starts a whole command line whose program part may itself hold blanks.
    virtual std::int32_t StartCommandLine(const QString& commandLine, std::int32_t windowStyle) = 0;

    // The process's current directory.
    virtual QString CurrentDirectory() = 0;

    // The process at the head of what the last successful start runs (the program and
    // the processes it starts belong to it); 0 when not known.
    virtual std::int64_t LastStartedProcess() { return 0; }
};
