#pragma once

#include <QString>

#include <cstdint>
#include <functional>

// How a started program ended.
struct ProgramExit {
    std::int64_t process = 0; // as StartedProcess gave it
    QString program;          // the program file that was started
    int status = 0;           // the exit status, or the signal number when `signalled`
    bool signalled = false;
    QString errorTail;      // the last lines the program wrote to its error output
    bool windows32 = false; // a 32-bit Windows program, started through wine
};

// Starts programs. Results follow the launcher convention the rest of the program
// relies on: above 32 means started, 32 or less is an error code, 0 means no resources.
class ProcessLauncher {
public:
    using ExitHandler = std::function<void(const ProgramExit&)>;

    virtual ~ProcessLauncher() = default;

    // Starts `program` with the blank-separated `parameters` in `workingDirectory`.
    virtual std::int32_t ShellExecute(const QString& program, const QString& parameters,
                                      const QString& workingDirectory,
                                      std::int32_t windowStyle) = 0;

    // Starts a whole command line whose program part may itself hold blanks.
    virtual std::int32_t StartCommandLine(const QString& commandLine, std::int32_t windowStyle) = 0;

    // The process's current directory.
    virtual QString CurrentDirectory() = 0;

    // The process the last successful start created; 0 when the last start failed or
    // the launcher cannot tell. It leads a session of its own, so its id is also the
    // session id of every process the program starts.
    virtual std::int64_t StartedProcess() { return 0; }

    // The last lines a started program that still runs has written to its error output.
    virtual QString ErrorOutput(std::int64_t process) {
        (void)process;
        return {};
    }

    // `handler` hears, from the event loop, of every started program that ends.
    virtual void OnProgramExit(ExitHandler handler) { (void)handler; }
};
