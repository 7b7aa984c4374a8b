#include "platform/posix/PosixProcessLauncher.h"

#include "platform/posix/ErrorTail.h"
#include "platform/posix/NoCasePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

constexpr std::int32_t kStarted = 42;
constexpr std::int32_t kNoResources = 0;
constexpr std::int32_t kFileNotFound = 2;
constexpr std::int32_t kPathNotFound = 3;
constexpr std::int32_t kAccessDenied = 5;
constexpr std::int32_t kOutOfMemory = 8;
constexpr std::int32_t kBadFormat = 11;
constexpr std::int32_t kFileBusy = 26;
constexpr std::int32_t kNoAssociation = 31;

std::int32_t FromErrno(int error) {
    switch (error) {
    case ENOENT:
        return kFileNotFound;
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
        return kPathNotFound;
    case ENOMEM:
    case E2BIG:
        return kOutOfMemory;
    case ENOEXEC:
        return kBadFormat;
    case ETXTBSY:
        return kFileBusy;
    case EAGAIN:
        return kNoResources;
    default:
        return kAccessDenied;
    }
}

struct Located {
    QString path;
    std::int32_t error = 0;
};

// Finds `program` (absolute, or relative to one of `bases` in order).
Located Locate(const QString& program, const QStringList& bases) {
    if (program.isEmpty())
        return {{}, kFileNotFound};
    const bool absolute = program.startsWith(QLatin1Char('/'));
    const QStringList candidates = [&] {
        if (absolute)
            return QStringList{program};
        QStringList list;
        for (const QString& base : bases)
            list << QDir(base).filePath(program);
        return list;
    }();
    for (const QString& candidate : candidates) {
        if (const auto found = FindPathNoCase(candidate))
            return {*found, 0};
    }
    // Tell a missing file from a missing folder, as the operator needs to know which.
    const QString first = candidates.value(0);
    const QString folder =
        QFileInfo(QString(first).replace(QLatin1Char('\\'), QLatin1Char('/'))).path();
    return {{}, FindPathNoCase(folder) ? kFileNotFound : kPathNotFound};
}

struct Runnable {
    bool windows = false;
    std::int32_t error = 0;
};

Runnable Inspect(const QString& path) {
    struct stat info {};
    const QByteArray native = QFile::encodeName(path);
    if (::stat(native.constData(), &info) != 0)
        return {false, FromErrno(errno)};
    if (!S_ISREG(info.st_mode))
        return {false, kAccessDenied};
    QFile file(path);
    if (file.open(QIODevice::ReadOnly) && file.read(2) == "MZ")
        return {true, 0};
    if (::access(native.constData(), X_OK) != 0)
        return {false, kAccessDenied};
    return {false, 0};
}

QString FindWine() {
    const QByteArray path = qgetenv("PATH");
    for (const QByteArray& dir : path.split(':')) {
        if (dir.isEmpty())
            continue; // an empty entry would mean the current directory
        const QByteArray candidate = dir + "/wine";
        struct stat info {};
        if (::stat(candidate.constData(), &info) == 0 && S_ISREG(info.st_mode) &&
            ::access(candidate.constData(), X_OK) == 0)
            return QFile::decodeName(candidate);
    }
    return {};
}

// Runs in the new program's process between fork and exec: only async-signal-safe
// calls from here on.
[[noreturn]] void ExecChild(char* const* argv, const char* workdir, int reportFd, int errorFd) {
    ::setsid();
    const int devnull = ::open("/dev/null", O_RDONLY);
    if (devnull >= 0 && devnull != STDIN_FILENO) {
        ::dup2(devnull, STDIN_FILENO);
        ::close(devnull);
    }
    if (errorFd >= 0)
        ::dup2(errorFd, STDERR_FILENO);
    int error = 0;
    if (workdir && ::chdir(workdir) != 0)
        error = errno;
    if (error == 0) {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        struct sigaction fallback {};
        fallback.sa_handler = SIG_DFL;
        for (const int sig : {SIGCHLD, SIGINT, SIGQUIT, SIGTERM, SIGHUP})
            sigaction(sig, &fallback, nullptr);
        // The error output is a pipe to us: once we are gone, a write to it must fail
        // rather than end the server.
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigaction(SIGPIPE, &ignore, nullptr);
        ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC); // best effort: no inherited handles
        ::execve(argv[0], argv, environ);
        error = errno;
    }
    [[maybe_unused]] const ssize_t written = ::write(reportFd, &error, sizeof error);
    ::_exit(127);
}

struct Spawned {
    pid_t pid = -1;
    int errorFd = -1; // read end of the program's error output
    std::int32_t error = 0;
};

// Starts argv[0] in a session of its own. A failed exec is reported through a
// close-on-exec pipe, so the call returns once the program runs or has failed to.
Spawned Spawn(const QStringList& arguments, const QString& workingDirectory) {
    std::vector<QByteArray> storage;
    for (const QString& argument : arguments)
        storage.push_back(QFile::encodeName(argument));
    std::vector<char*> argv;
    for (QByteArray& argument : storage)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    const QByteArray workdir = QFile::encodeName(workingDirectory);
    const char* workdirText = workingDirectory.isEmpty() ? nullptr : workdir.constData();

    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0)
        return {-1, -1, kNoResources};
    int errors[2] = {-1, -1};
    if (::pipe2(errors, O_CLOEXEC) != 0)
        errors[0] = errors[1] = -1; // the program runs without its error output kept
    const pid_t child = ::fork();
    if (child == 0)
        ExecChild(argv.data(), workdirText, report[1], errors[1]);
    ::close(report[1]);
    if (errors[1] >= 0)
        ::close(errors[1]);
    if (child < 0) {
        ::close(report[0]);
        if (errors[0] >= 0)
            ::close(errors[0]);
        return {-1, -1, kNoResources};
    }
    int error = 0;
    ssize_t got = 0;
    do {
        got = ::read(report[0], &error, sizeof error);
    } while (got < 0 && errno == EINTR);
    ::close(report[0]);
    if (got == sizeof error) {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
        if (errors[0] >= 0)
            ::close(errors[0]);
        return {-1, -1, FromErrno(error)};
    }
    if (errors[0] >= 0)
        ::fcntl(errors[0], F_SETFL, O_NONBLOCK);
    return {child, errors[0], 0};
}

// Whether a Windows program file is built for 32-bit x86 (PE machine type i386).
bool IsWindows32(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray dos = file.read(64);
    if (dos.size() < 64)
        return false;
    const auto at = [](const QByteArray& bytes, int offset) {
        return quint32(quint8(bytes[offset])) | quint32(quint8(bytes[offset + 1])) << 8;
    };
    const quint32 header = at(dos, 0x3C) | at(dos, 0x3E) << 16;
    if (!file.seek(header))
        return false;
    const QByteArray pe = file.read(6);
    return pe.size() == 6 && pe.startsWith(QByteArray("PE\0\0", 4)) && at(pe, 4) == 0x014C;
}

QStringList SplitBlanks(const QString& text) {
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QString FolderOf(const QString& file) {
    return QFileInfo(file).absolutePath();
}

} // namespace

// A started program being watched: its end through a process file descriptor, its
// error output through a pipe, both on the event loop.
struct PosixProcessLauncher::Watch {
    ProgramExit exit;
    int processFd = -1;
    int errorFd = -1;
    ErrorTail tail;
    std::unique_ptr<QSocketNotifier> ended, output;

    ~Watch() {
        ended.reset();
        output.reset();
        for (const int fd : {processFd, errorFd})
            if (fd >= 0)
                ::close(fd);
    }
    // Takes what the program has written so far; false once its end of the pipe closed.
    bool ReadOutput() {
        char buffer[4096];
        for (;;) {
            const ssize_t got = ::read(errorFd, buffer, sizeof buffer);
            if (got > 0)
                tail.Append(buffer, got);
            else if (got < 0 && errno == EINTR)
                continue;
            else
                return got < 0 && errno == EAGAIN;
        }
    }
};

PosixProcessLauncher::PosixProcessLauncher() = default;

// The programs outlive us; only our ends of their pipes close.
PosixProcessLauncher::~PosixProcessLauncher() = default;

std::int32_t PosixProcessLauncher::Start(const QString& program, const QStringList& parameters,
                                         const QString& workingDirectory) {
    lastStarted_ = 0;
    const Runnable runnable = Inspect(program);
    if (runnable.error)
        return runnable.error;
    QStringList arguments;
    if (runnable.windows) {
        const QString wine = FindWine();
        if (wine.isEmpty())
            return kNoAssociation;
        arguments << wine;
    }
    arguments << program << parameters;
    const Spawned spawned = Spawn(arguments, workingDirectory);
    if (spawned.error || spawned.pid < 0)
        return spawned.error;

    auto watch = std::make_unique<Watch>();
    watch->exit.process = spawned.pid;
    watch->exit.program = program;
    watch->exit.windows32 = runnable.windows && IsWindows32(program);
    watch->errorFd = spawned.errorFd;
    watch->processFd = int(::syscall(SYS_pidfd_open, spawned.pid, 0));
    const std::int64_t process = spawned.pid;
    if (watch->processFd >= 0) {
        watch->ended = std::make_unique<QSocketNotifier>(watch->processFd, QSocketNotifier::Read);
        QObject::connect(watch->ended.get(), &QSocketNotifier::activated,
                         [this, process] { Ended(process); });
    }
    if (watch->errorFd >= 0) {
        watch->output = std::make_unique<QSocketNotifier>(watch->errorFd, QSocketNotifier::Read);
        Watch* raw = watch.get();
        QObject::connect(watch->output.get(), &QSocketNotifier::activated, [raw] {
            if (!raw->ReadOutput())
                raw->output->setEnabled(false);
        });
    }
    watches_[process] = std::move(watch);
    lastStarted_ = process;
    return kStarted;
}

void PosixProcessLauncher::Ended(std::int64_t process) {
    const auto found = watches_.find(process);
    if (found == watches_.end())
        return;
    Watch& watch = *found->second;
    siginfo_t info{};
    if (::waitid(P_PID, id_t(process), &info, WEXITED | WNOHANG) != 0 || info.si_pid == 0)
        return; // not ended after all
    if (watch.errorFd >= 0)
        watch.ReadOutput();
    ProgramExit exit = watch.exit;
    exit.signalled = info.si_code != CLD_EXITED;
    exit.status = info.si_status;
    exit.errorTail = watch.tail.Lines();
    // The notifier that called us goes with the watch: let it return first.
    watch.ended->setEnabled(false);
    watch.ended.release()->deleteLater();
    watches_.erase(found);
    if (onExit_)
        onExit_(exit);
}

QString PosixProcessLauncher::ErrorOutput(std::int64_t process) {
    const auto found = watches_.find(process);
    if (found == watches_.end())
        return {};
    if (found->second->errorFd >= 0)
        found->second->ReadOutput();
    return found->second->tail.Lines();
}

std::int32_t PosixProcessLauncher::ShellExecute(const QString& program, const QString& parameters,
                                                const QString& workingDirectory,
                                                std::int32_t /*windowStyle*/) {
    lastStarted_ = 0;
    QString workdir;
    if (!workingDirectory.isEmpty()) {
        const auto found = FindPathNoCase(workingDirectory);
        if (found && QFileInfo(*found).isDir())
            workdir = *found;
    }
    QStringList bases;
    if (!workdir.isEmpty())
        bases << workdir;
    bases << CurrentDirectory();
    const Located located = Locate(program, bases);
    if (located.error)
        return located.error;
    if (!workingDirectory.isEmpty() && workdir.isEmpty())
        workdir = FolderOf(located.path);
    return Start(located.path, SplitBlanks(parameters), workdir);
}

std::int32_t PosixProcessLauncher::StartCommandLine(const QString& commandLine,
                                                    std::int32_t /*windowStyle*/) {
    lastStarted_ = 0;
    const QString line = commandLine.trimmed();
    const QStringList bases{CurrentDirectory()};

    struct Split {
        QString program;
        QString rest;
    };
    QList<Split> splits;
    const qsizetype closing = line.startsWith(QLatin1Char('"')) ? line.indexOf('"', 1) : -1;
    if (closing > 0) {
        splits.append({line.mid(1, closing - 1), line.mid(closing + 1)});
    } else {
        for (qsizetype i = 0; i <= line.size(); ++i) {
            if (i < line.size() && line[i] != QLatin1Char(' '))
                continue;
            if (i > 0 && line[i - 1] != QLatin1Char(' '))
                splits.append({line.left(i), line.mid(i + 1)});
        }
    }

    std::int32_t error = kFileNotFound;
    for (const Split& split : splits) {
        const Located located = Locate(split.program, bases);
        if (located.error)
            continue;
        const Runnable runnable = Inspect(located.path);
        if (runnable.error) {
            if (QFileInfo(located.path).isFile())
                error = runnable.error; // a file that is there but cannot run
            continue;
        }
        return Start(located.path, SplitBlanks(split.rest), FolderOf(located.path));
    }
    return error;
}

QString PosixProcessLauncher::CurrentDirectory() {
    return QDir::currentPath();
}
