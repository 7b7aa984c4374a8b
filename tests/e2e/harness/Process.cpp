#include "Process.h"

#include <QFile>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>

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

Process::Process(const QString& program, const QStringList& args, const ProcessOptions& options) {
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty())
        throw std::runtime_error("cannot find the program " + program.toStdString());
    std::vector<std::string> strings{path.toStdString()};
    for (const QString& a : args)
        strings.push_back(a.toStdString());
    const std::size_t argc = strings.size();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString& e : options.env)
        env.insert(e.section('=', 0, 0), e.section('=', 1));
    for (const QString& e : env.toStringList())
        strings.push_back(e.toStdString());
    std::vector<char*> argv, envp;
    for (std::size_t i = 0; i < strings.size(); ++i)
        (i < argc ? argv : envp).push_back(strings[i].data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);
    const std::string workDir = options.workDir.toStdString(), out = options.output.toStdString(),
                      err = options.errors.isEmpty() ? out : options.errors.toStdString();
    const pid_t parent = getpid();
    pid_ = fork();
    if (pid_ < 0)
        throw std::runtime_error("fork failed");
    if (pid_ > 0)
        return;
    // Only async-signal-safe calls from here on; any failure ends the child with 127.
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const auto redirect = [](const std::string& file, int fd, int flags) {
        const int f = open(file.c_str(), flags, 0644);
        return f >= 0 && (f == fd || (dup2(f, fd) >= 0 && close(f) == 0));
    };
    if (getppid() == parent && redirect("/dev/null", 0, O_RDONLY) &&
        (out.empty() || redirect(out, 1, O_WRONLY | O_CREAT | O_APPEND)) &&
        (err.empty() || redirect(err, 2, O_WRONLY | O_CREAT | O_APPEND)) &&
        (workDir.empty() || chdir(workDir.c_str()) == 0))
        execve(argv[0], argv.data(), envp.data());
    _exit(127);
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
