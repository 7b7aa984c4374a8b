#include "platform/posix/PosixProcessLauncher.h"

#include "platform/posix/NoCasePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
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
[[noreturn]] void ExecChild(char* const* argv, const char* workdir, int reportFd) {
    const int devnull = ::open("/dev/null", O_RDONLY);
    if (devnull >= 0 && devnull != STDIN_FILENO) {
        ::dup2(devnull, STDIN_FILENO);
        ::close(devnull);
    }
    int error = 0;
    if (workdir && ::chdir(workdir) != 0)
        error = errno;
    if (error == 0) {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        struct sigaction fallback {};
        fallback.sa_handler = SIG_DFL;
        for (const int sig : {SIGPIPE, SIGCHLD, SIGINT, SIGQUIT, SIGTERM, SIGHUP})
            sigaction(sig, &fallback, nullptr);
        ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC); // best effort: no inherited handles
        ::execve(argv[0], argv, environ);
        error = errno;
    }
    [[maybe_unused]] const ssize_t written = ::write(reportFd, &error, sizeof error);
    ::_exit(127);
}

// The intermediate process of the last successful start: it opened the session in which
// the program and everything it starts run.
pid_t lastSession = 0;

// Starts argv[0] detached: an intermediate process opens a new session, forks the
// program and leaves at once, so init adopts the program and we reap only the
// intermediate. The program reports a failed exec through a close-on-exec pipe.
std::int32_t Spawn(const QStringList& arguments, const QString& workingDirectory) {
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
        return kNoResources;
    const pid_t middle = ::fork();
    if (middle < 0) {
        ::close(report[0]);
        ::close(report[1]);
        return kNoResources;
    }
    if (middle == 0) {
        ::close(report[0]);
        ::setsid();
        const pid_t child = ::fork();
        if (child == 0)
            ExecChild(argv.data(), workdirText, report[1]);
        if (child < 0) {
            const int error = EAGAIN;
            [[maybe_unused]] const ssize_t written = ::write(report[1], &error, sizeof error);
        }
        ::_exit(0);
    }
    ::close(report[1]);
    int status = 0;
    while (::waitpid(middle, &status, 0) < 0 && errno == EINTR) {
    }
    int error = 0;
    ssize_t got = 0;
    do {
        got = ::read(report[0], &error, sizeof error);
    } while (got < 0 && errno == EINTR);
    ::close(report[0]);
    if (got == sizeof error)
        return FromErrno(error);
    lastSession = middle;
    return kStarted;
}

std::int32_t Start(const QString& program, const QStringList& parameters,
                   const QString& workingDirectory) {
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
    return Spawn(arguments, workingDirectory);
}

QStringList SplitBlanks(const QString& text) {
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QString FolderOf(const QString& file) {
    return QFileInfo(file).absolutePath();
}

} // namespace

std::int32_t PosixProcessLauncher::ShellExecute(const QString& program, const QString& parameters,
                                                const QString& workingDirectory,
                                                std::int32_t /*windowStyle*/) {
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

std::int64_t PosixProcessLauncher::LastStartedProcess() {
    return lastSession;
}

QString PosixProcessLauncher::CurrentDirectory() {
    return QDir::currentPath();
}
