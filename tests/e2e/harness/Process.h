#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>

#include <sys/types.h>

namespace e2e {

using namespace std::chrono_literals;

// Polls `done` with short sleeps until it holds or `timeout` passes; true when it held.
// For waiting on other processes, never on the program's own timers.
bool WaitUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout,
               std::chrono::milliseconds poll = 20ms);

struct ProcessOptions {
    QStringList env;   // "NAME=value" entries added to, or replacing, this process's
    QString workDir;   // empty: this process's current directory
    QString output;    // file that takes stdout; empty: inherited
    QString errors;    // file that takes stderr; empty: the same as stdout
};

// A program started directly (no shell) in a process group of its own. It dies with the
// test process, and the destructor stops its group when it still runs.
class Process {
public:
    Process() = default;
    // Throws std::runtime_error when the program cannot be started.
    Process(const QString& program, const QStringList& args, const ProcessOptions& options = {});
    ~Process() { Stop(); }
    Process(Process&& other) noexcept { *this = std::move(other); }
    Process& operator=(Process&& other) noexcept;

    bool IsRunning() { return pid_ != 0 && !Reap(false); }
    // The exit code (128 + signal when a signal ended it), or nothing on timeout.
    std::optional<int> WaitForExit(std::chrono::milliseconds timeout);
    // SIGTERM to the process group, SIGKILL after 3 s; returns the exit code.
    std::optional<int> Stop();

private:
    bool Reap(bool block);

    pid_t pid_ = 0;
    std::optional<int> exitCode_;
};

struct ToolResult {
    int exitCode = -1; // -1 when it did not finish in time
    QString out;
};

// Runs a command-line tool to completion and returns what it printed on stdout.
ToolResult RunTool(const QString& program, const QStringList& args, const QStringList& env = {});

} // namespace e2e
