#pragma once

#include "platform/ProcessLauncher.h"

#include <map>
#include <memory>

// Starts programs on Linux without a shell. The program file is found without regard
// to the case of its path; a Windows executable (a file beginning with "MZ") starts
// through `wine`, any other executable file directly. Parameters are split on blanks
// and handed over literally; quotes are not interpreted. The new program runs in its
// own session with its standard input from /dev/null and outlives this process. While
// this process runs it watches the program: the end of the program is seen through a
// process file descriptor on the event loop, and the last lines of its error output are
// kept for the exit report (the output itself is not shown anywhere).
//
// Results: 42 started; 2 file not found; 3 folder not found; 5 not executable or no
// permission; 8 out of memory; 11 not a program format the system runs; 26 file busy;
// 31 a Windows program but no `wine` on PATH; 0 no process could be created.
class PosixProcessLauncher : public ProcessLauncher {
public:
    // A relative `program` is looked up in `workingDirectory`, then in the current
    // directory (never on PATH). The program runs in `workingDirectory`; when that is
    // empty it inherits the current directory, and when it does not exist it runs in
    // the program's own folder. `windowStyle` has no meaning here and is ignored.
    std::int32_t ShellExecute(const QString& program, const QString& parameters,
                              const QString& workingDirectory, std::int32_t windowStyle) override;

    // Tries the blank-separated prefixes of the line, shortest first, until one names a
    // program file, and starts it with the rest of the line as parameters, in the
    // program's own folder (where the game looks for its files). A line that begins
    // with a quoted path uses that path.
    std::int32_t StartCommandLine(const QString& commandLine, std::int32_t windowStyle) override;

    QString CurrentDirectory() override;
    std::int64_t StartedProcess() override { return lastStarted_; }
    void OnProgramExit(ExitHandler handler) override { onExit_ = std::move(handler); }
    QString ErrorOutput(std::int64_t process) override;

    PosixProcessLauncher();
    ~PosixProcessLauncher() override;

    struct Watch;

private:
    std::int32_t Start(const QString& program, const QStringList& parameters,
                       const QString& workingDirectory);
    void Ended(std::int64_t process);

    std::int64_t lastStarted_ = 0;
    ExitHandler onExit_;
    std::map<std::int64_t, std::unique_ptr<Watch>> watches_;
};
