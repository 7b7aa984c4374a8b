// Programs a test starts, and the desktop they run on, watched and driven through X tools.
#pragma once

#include <QDir>
#include <QPoint>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <chrono>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>

namespace e2e {

using namespace std::chrono_literals;
using WindowId = unsigned long;

// Polls `done` until it holds or `timeout` passes; true when it held. For waiting on other
// processes, never on the program's own timers.
template <class Done>
bool WaitUntil(Done done, std::chrono::milliseconds timeout,
               std::chrono::milliseconds poll = 20ms) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (; !done(); std::this_thread::sleep_for(poll))
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
    return true;
}

// Where tests leave screenshots and logs.
inline QString ArtifactPath(const QString& fileName) {
    QDir().mkpath(E2E_ARTIFACTS);
    return E2E_ARTIFACTS "/" + fileName;
}

// A program that dies with the test process. Its last copy's end, or Stop, sends SIGTERM, then
// SIGKILL after 3 s. `log` takes stdout and stderr; without one, stdout is kept for Output.
class Process {
public:
    Process() = default;
    Process(const QString& program, const QStringList& args, const QStringList& env = {},
            const QString& workDir = {}, const QString& log = {})
        : process_(new QProcess, [](QProcess* process) {
              process->terminate();
              if (!process->waitForFinished(3000)) {
                  process->kill();
                  process->waitForFinished();
              }
              delete process;
          }) {
        QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
        for (const QString& e : env)
            all.insert(e.section('=', 0, 0), e.section('=', 1));
        process_->setProcessEnvironment(all);
        process_->setWorkingDirectory(workDir);
        process_->setStandardInputFile(QProcess::nullDevice());
        if (!log.isEmpty())
            process_->setStandardOutputFile(log, QIODevice::Append);
        process_->setStandardErrorFile(log.isEmpty() ? QProcess::nullDevice() : log,
                                       QIODevice::Append);
        process_->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
        process_->start(program, args);
        if (!process_->waitForStarted())
            throw std::runtime_error("cannot start " + program.toStdString());
    }
    bool WaitForExit(std::chrono::milliseconds timeout) {
        return !process_ || process_->state() == QProcess::NotRunning ||
               process_->waitForFinished(int(timeout.count()));
    }
    bool IsRunning() { return !WaitForExit(0ms); }
    void Stop() { process_.reset(); }
    int ExitCode() {
        return WaitForExit(0ms) && process_->exitStatus() == QProcess::NormalExit
                   ? process_->exitCode()
                   : -1;
    }
    // What it has printed so far, after waiting up to `timeout` for its first output.
    QString Output(std::chrono::milliseconds timeout = 0ms) {
        if (process_->bytesAvailable() == 0)
            process_->waitForReadyRead(int(timeout.count()));
        return QString::fromUtf8(process_->readAllStandardOutput());
    }

private:
    std::shared_ptr<QProcess> process_;
};

// A private X server (Xvfb, 1280x1024x24, no TCP) on a free display, managed by openbox unless
// asked otherwise. Throws std::runtime_error when it does not come up.
class Desktop {
public:
    explicit Desktop(bool windowManager = true) {
        // Xvfb prints the display number it picked once it accepts clients.
        server_ = Process("Xvfb", {"-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten",
                                   "tcp", "-noreset"});
        display_ = ":" + server_.Output(15s).trimmed();
        if (display_ == ":")
            throw std::runtime_error("Xvfb did not report a display");
        if (!windowManager)
            return;
        // openbox with nothing from the user's configuration. It runs its start-up command
        // once it manages every window mapped from then on.
        const QString home = dir_.path(), config = dir_.filePath("rc.xml");
        std::ofstream(config.toStdString())
            << "<openbox_config xmlns=\"http://openbox.org/3.4/rc\"><focus><focusNew>yes</focusNew>"
               "<followMouse>no</followMouse></focus><desktops><number>1</number></desktops>"
               "</openbox_config>\n";
        windowManager_ =
            Process("openbox", {"--config-file", config, "--startup", "touch " + home + "/ready"},
                    Environment() << "HOME=" + home << "XDG_CONFIG_HOME=" + home
                                  << "XDG_CONFIG_DIRS=" + home,
                    {}, ArtifactPath("openbox.log"));
        if (!WaitUntil([&] { return QFile::exists(dir_.filePath("ready")); }, 15s))
            throw std::runtime_error("openbox did not start on " + display_.toStdString());
    }

    // The desktop session this process runs in (under scripts/wayland-session.sh, a Wayland
    // desktop with or without an X display). The Wayland socket is named by its full path:
    // the programs get a runtime folder of their own.
    struct Session {};
    explicit Desktop(Session) : display_(qEnvironmentVariable("DISPLAY")), platform_() {
        if (const QString socket = qEnvironmentVariable("WAYLAND_DISPLAY"); !socket.isEmpty())
            platform_ << "WAYLAND_DISPLAY=" +
                             QDir(qEnvironmentVariable("XDG_RUNTIME_DIR")).absoluteFilePath(socket);
    }

    const QString& Display() const { return display_; }
    QStringList Environment() const { return QStringList{"DISPLAY=" + display_} + platform_; }
    void UseInThisProcess() const { setenv("DISPLAY", display_.toLocal8Bit().constData(), 1); }
    // Ends the X server, as its clients see a lost connection.
    void StopServer() {
        windowManager_.Stop();
        server_.Stop();
    }
    // What the tool printed; nothing when it failed or took more than 15 s.
    std::optional<QString> Run(const QString& tool, const QStringList& args) const {
        Process process(tool, args, Environment());
        return process.WaitForExit(15s) && process.ExitCode() == 0 ? process.Output()
                                                                   : std::optional<QString>();
    }

    // The window manager's client windows, top first, and their titles.
    std::vector<WindowId> Windows() const {
        std::vector<WindowId> ids;
        const QString list = Run("xprop", {"-root", "_NET_CLIENT_LIST_STACKING"}).value_or("");
        static const QRegularExpression hexId("0x[0-9a-fA-F]+");
        for (const auto& m : hexId.globalMatch(list.section('#', 1)))
            ids.insert(ids.begin(), m.captured().toULong(nullptr, 0));
        return ids;
    }
    QString Title(WindowId window) const {
        return Run("xdotool", {"getwindowname", Id(window)}).value_or("\n").chopped(1);
    }
    QStringList Titles() const {
        QStringList titles;
        for (WindowId id : Windows())
            titles << Title(id);
        return titles;
    }
    std::optional<WindowId> WaitFor(const QString& title,
                                    std::chrono::milliseconds timeout = 20s) const {
        std::optional<WindowId> found;
        WaitUntil(
            [&] {
                for (WindowId id : Windows())
                    if (Title(id) == title)
                        return (found = id).has_value();
                return false;
            },
            timeout, 50ms);
        return found;
    }
    std::optional<WindowId> Find(const QString& title) const { return WaitFor(title, 0ms); }
    bool WaitGone(WindowId window, std::chrono::milliseconds timeout = 10s) const {
        return WaitUntil([&] { return !Run("xwininfo", {"-id", Id(window)}); }, timeout, 50ms);
    }

    // Clicks at `position` in the window's client area. "mousemove --sync" waits for the
    // pointer to move; when it already rests on the spot it would wait out the time limit.
    bool Click(WindowId window, QPoint position) const {
        return Run("xdotool", {"mousemove", "0", "0"}) &&
               Run("xdotool",
                   {"mousemove", "--sync", "--window", Id(window), QString::number(position.x()),
                    QString::number(position.y()), "click", "1"});
    }
    bool Key(const QString& keys) const { return Run("xdotool", {"key", "--", keys}).has_value(); }
    // Asks the window manager to activate the window and waits until it is active.
    bool Activate(WindowId window) const {
        return Run("xdotool", {"windowactivate", "--sync", Id(window)}).has_value();
    }
    std::optional<WindowId> Active() const { return Read({"getactivewindow"}); }
    std::optional<WindowId> Focused() const { return Read({"getwindowfocus", "-f"}); }

private:
    static QString Id(WindowId window) { return QString::number(window); }
    std::optional<WindowId> Read(const QStringList& xdotoolArgs) const {
        const WindowId id = Run("xdotool", xdotoolArgs).value_or("").trimmed().toULong();
        return id ? std::optional(id) : std::nullopt;
    }

    QTemporaryDir dir_;
    QString display_;
    QStringList platform_ = {"QT_QPA_PLATFORM=xcb"};
    Process server_, windowManager_; // ended in reverse order: the window manager first
};

} // namespace e2e
