#include "Process.h"

#include <QFile>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace e2e {

bool WaitUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout,
               std::chrono::milliseconds poll) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        if (done())
            return true;
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(poll);
    }
}

namespace {

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
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    if (file < 0 || dup2(file, fd) < 0)
        FailChild(errorPipe);
    close(file);
}

} // namespace

Process::Process(const QString& program, const QStringList& args, const ProcessOptions& options) {
    std::vector<std::string> argStrings{program.toStdString()}, envStrings;
    for (const QString& a : args)
        argStrings.push_back(a.toStdString());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString& e : options.env)
        env.insert(e.section('=', 0, 0), e.section('=', 1));
    for (const QString& e : env.toStringList())
        envStrings.push_back(e.toStdString());
    std::vector<char*> argv = Pointers(argStrings), envp = Pointers(envStrings);
    const std::string workDir = options.workDir.toStdString(), out = options.output.toStdString(),
                      err = options.errors.isEmpty() ? out : options.errors.toStdString();

    int errorPipe[2];
    if (pipe2(errorPipe, O_CLOEXEC) != 0)
        throw std::runtime_error("pipe2 failed");
    const pid_t parent = getpid();
    const pid_t pid = fork();
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
        dup2(devNull, 0);
        close(devNull);
        if (!out.empty())
            Redirect(out, 1, errorPipe[1]);
        if (!err.empty())
            Redirect(err, 2, errorPipe[1]);
        if (!workDir.empty() && chdir(workDir.c_str()) != 0)
            FailChild(errorPipe[1]);
        execvpe(argv[0], argv.data(), envp.data());
        FailChild(errorPipe[1]);
    }
    close(errorPipe[1]);
    int childError = 0;
    ssize_t n = -1;
    while (pid > 0 && (n = read(errorPipe[0], &childError, sizeof childError)) < 0 &&
           errno == EINTR) {
    }
    close(errorPipe[0]);
    pid_ = pid > 0 ? pid : 0;
    if (pid < 0 || n > 0) {
        Reap(true);
        pid_ = 0;
        throw std::runtime_error("cannot start " + program.toStdString() + ": " +
                                 std::strerror(pid < 0 ? errno : childError));
    }
}

Process& Process::operator=(Process&& other) noexcept {
    if (this != &other) {
        Stop();
        pid_ = std::exchange(other.pid_, 0);
        exitCode_ = other.exitCode_;
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
    exitCode_ = r < 0 ? -1 : WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return true;
}

std::optional<int> Process::WaitForExit(std::chrono::milliseconds timeout) {
    if (pid_ != 0)
        WaitUntil([&] { return Reap(false); }, timeout, 10ms);
    return exitCode_;
}

std::optional<int> Process::Stop() {
    if (pid_ == 0)
        return exitCode_;
    if (!Reap(false)) {
        kill(-pid_, SIGTERM);
        if (!WaitForExit(3s)) {
            kill(-pid_, SIGKILL);
            Reap(true);
        }
    }
    // Whatever the program left behind in its group goes with it.
    kill(-pid_, SIGKILL);
    pid_ = 0;
    return exitCode_;
}

ToolResult RunTool(const QString& program, const QStringList& args, const QStringList& env) {
    QTemporaryDir dir;
    Process process(program, args, {env, {}, dir.filePath("out"), "/dev/null"});
    ToolResult result{process.WaitForExit(15s).value_or(-1), {}};
    process.Stop();
    QFile out(dir.filePath("out"));
    if (out.open(QIODevice::ReadOnly))
        result.out = QString::fromUtf8(out.readAll());
    return result;
}

} // namespace e2e
