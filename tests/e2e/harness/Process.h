#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

#include <sys/types.h>

namespace e2e {

struct ProcessOptions {
    QStringList env;    // "NAME=value" entries added to, or replacing, this process's
    QString workDir;    // empty: this process's current directory
    QString stdoutFile; // empty: inherited
    QString stderrFile; // empty: inherited
};

// A program started directly (no shell) in a process group of its own. It dies with the
// test process, and the destructor stops it (SIGTERM to the group, SIGKILL after a grace
// period) when it still runs.
class Process {
public:
    Process() = default;
    // Throws std::runtime_error when the program cannot be started.
    Process(const QString& program, const QStringList& args, const ProcessOptions& options = {});
    ~Process();
    Process(Process&& other) noexcept;
    Process& operator=(Process&& other) noexcept;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    pid_t Pid() const { return pid_; } // 0 once stopped
    bool IsRunning();
    // The exit code (128 + signal when a signal ended it), or nothing on timeout.
    std::optional<int> WaitForExit(std::chrono::milliseconds timeout);
    std::optional<int> ExitCode() const { return exitCode_; }
    // SIGTERM to the process group, SIGKILL after `grace`; returns the exit code.
    std::optional<int> Stop(std::chrono::milliseconds grace = std::chrono::seconds(3));

private:
    bool Reap(bool block);

    pid_t pid_ = 0;
    std::optional<int> exitCode_;
};

struct ToolResult {
    int exitCode = -1; // -1 when it did not finish in time
    QString out;
    QString err;
};

// Runs a command-line tool to completion and returns what it printed.
ToolResult RunTool(const QString& program, const QStringList& args, const QStringList& env = {},
                   std::chrono::milliseconds timeout = std::chrono::seconds(15));

} // namespace e2e
