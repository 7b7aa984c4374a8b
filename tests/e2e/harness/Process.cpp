#include "Process.h"

#include "Wait.h"

#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace e2e {

namespace {

std::vector<std::string> MergedEnvironment(const QStringList& extra) {
    std::vector<std::string> merged;
    for (char** e = environ; *e; ++e) {
        const QString entry = QString::fromLocal8Bit(*e);
        const QString name = entry.section('=', 0, 0);
        bool replaced = false;
        for (const QString& x : extra)
            replaced = replaced || x.section('=', 0, 0) == name;
        if (!replaced)
            merged.push_back(*e);
    }
    for (const QString& x : extra)
        merged.push_back(x.toStdString());
    return merged;
}

std::vector<char*> Pointers(std::vector<std::string>& strings) {
    std::vector<char*> p;
    for (auto& s : strings)
        p.push_back(s.data());
    p.push_back(nullptr);
    return p;
}

[[noreturn]] void FailChild(int errorPipe) {
    const int error = errno;
    (void)!write(errorPipe, &error, sizeof error);
    _exit(127);
}

void Redirect(const std::string& path, int fd, int errorPipe) {
    if (path.empty())
        return;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    if (file < 0 || dup2(file, fd) < 0)
        FailChild(errorPipe);
    close(file);
}

} // namespace

Process::Process(const QString& program, const QStringList& args, const ProcessOptions& options) {
    std::vector<std::string> argStrings{program.toStdString()};
    for (const QString& a : args)
        argStrings.push_back(a.toStdString());
    std::vector<std::string> envStrings = MergedEnvironment(options.env);
    std::vector<char*> argv = Pointers(argStrings);
    std::vector<char*> envp = Pointers(envStrings);
    const std::string workDir = options.workDir.toStdString();
    const std::string out = options.stdoutFile.toStdString();
    const std::string err = options.stderrFile.toStdString();

    int errorPipe[2];
    if (pipe2(errorPipe, O_CLOEXEC) != 0)
        throw std::runtime_error("pipe2 failed");
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid < 0) {
        close(errorPipe[0]);
        close(errorPipe[1]);
        throw std::runtime_error("fork failed");
    }
    if (pid == 0) {
        // Only async-signal-safe calls from here on.
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(127);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        const int devNull = open("/dev/null", O_RDONLY);
        if (devNull >= 0) {
            dup2(devNull, 0);
            close(devNull);
        }
        Redirect(out, 1, errorPipe[1]);
        Redirect(err, 2, errorPipe[1]);
        if (!workDir.empty() && chdir(workDir.c_str()) != 0)
            FailChild(errorPipe[1]);
        execvpe(argv[0], argv.data(), envp.data());
        FailChild(errorPipe[1]);
    }
    close(errorPipe[1]);
    int childError = 0;
    ssize_t n;
    do
        n = read(errorPipe[0], &childError, sizeof childError);
    while (n < 0 && errno == EINTR);
    close(errorPipe[0]);
    pid_ = pid;
    if (n > 0) {
        Reap(true);
        pid_ = 0;
        throw std::runtime_error("cannot start " + program.toStdString() + ": " +
                                 std::strerror(childError));
    }
}

Process::~Process() {
    Stop();
}

Process::Process(Process&& other) noexcept : pid_(other.pid_), exitCode_(other.exitCode_) {
    other.pid_ = 0;
}

Process& Process::operator=(Process&& other) noexcept {
    if (this != &other) {
        Stop();
        pid_ = other.pid_;
        exitCode_ = other.exitCode_;
        other.pid_ = 0;
    }
    return *this;
}

bool Process::Reap(bool block) {
    if (pid_ == 0 || exitCode_)
        return true;
    int status = 0;
    const pid_t r = waitpid(pid_, &status, block ? 0 : WNOHANG);
    if (r == 0)
        return false;
    if (r < 0) {
        exitCode_ = -1;
        return true;
    }
    exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return true;
}

bool Process::IsRunning() {
    return pid_ != 0 && !Reap(false);
}

std::optional<int> Process::WaitForExit(std::chrono::milliseconds timeout) {
    if (pid_ == 0)
        return exitCode_;
    WaitUntil([&] { return Reap(false); }, timeout, 10ms);
    return exitCode_;
}

std::optional<int> Process::Stop(std::chrono::milliseconds grace) {
    if (pid_ == 0)
        return exitCode_;
    if (!Reap(false)) {
        kill(-pid_, SIGTERM);
        if (!WaitForExit(grace)) {
            kill(-pid_, SIGKILL);
            Reap(true);
        }
    }
    // Whatever the program left behind in its group goes with it.
    kill(-pid_, SIGKILL);
    pid_ = 0;
    return exitCode_;
}

ToolResult RunTool(const QString& program, const QStringList& args, const QStringList& env,
                   std::chrono::milliseconds timeout) {
    QTemporaryDir dir;
    ProcessOptions options;
    options.env = env;
    options.stdoutFile = dir.filePath("out");
    options.stderrFile = dir.filePath("err");
    ToolResult result;
    Process process(program, args, options);
    result.exitCode = process.WaitForExit(timeout).value_or(-1);
    process.Stop();
    QFile out(options.stdoutFile), err(options.stderrFile);
    if (out.open(QIODevice::ReadOnly))
        result.out = QString::fromUtf8(out.readAll());
    if (err.open(QIODevice::ReadOnly))
        result.err = QString::fromUtf8(err.readAll());
    return result;
}

} // namespace e2e
