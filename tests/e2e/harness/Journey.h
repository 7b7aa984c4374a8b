// The one end-to-end fixture: a private desktop, watched and driven through X tools, a
// throw-away home holding a copy of the demo game, and the real hostwarden binary. The stand-in
// server leaves its witnesses (commandline.txt, transcript.txt, keys.log, events.txt) in the
// game copy.
#pragma once

#include "Texts.h"

#include <QDir>
#include <QFileInfo>
#include <QPoint>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>

// Lets test failures show texts as text.
inline std::ostream& operator<<(std::ostream& os, const QString& text) {
    return os << '"' << text.toStdString() << '"';
}

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
        // openbox with its defaults and nothing from the user's configuration. It runs its
        // start-up command once it manages every window mapped from then on.
        const QString home = dir_.path();
        windowManager_ = Process("openbox", {"--startup", "touch " + home + "/ready"},
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
    // An xterm running `command` in `workDir`, and its window (0 when none came).
    std::pair<Process, WindowId> Xterm(const QString& title, const QString& command = "sleep 600",
                                       const QString& workDir = {}) const {
        Process xterm("xterm", {"-T", title, "-e", "sh", "-c", command}, Environment(), workDir);
        const WindowId id = WaitFor(title).value_or(0);
        EXPECT_NE(id, 0u) << title;
        return {std::move(xterm), id};
    }
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
    QList<WindowId> Windows() const {
        QList<WindowId> ids;
        const QString list = Run("xprop", {"-root", "_NET_CLIENT_LIST_STACKING"}).value_or("");
        static const QRegularExpression hexId("0x[0-9a-fA-F]+");
        for (const auto& m : hexId.globalMatch(list.section('#', 1)))
            ids.prepend(m.captured().toULong(nullptr, 0));
        return ids;
    }
    // xprop's account of the window's properties, all or those named.
    QString Properties(WindowId window, const QStringList& names = {}) const {
        return Run("xprop", QStringList{"-id", Id(window)} + names).value_or("");
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
        const auto shown = [&] {
            for (WindowId id : Windows())
                if (Title(id) == title)
                    return (found = id).has_value();
            return false;
        };
        WaitUntil(shown, timeout, 50ms);
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
    bool Type(const QString& text) const { return Run("xdotool", {"type", text}).has_value(); }
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

using namespace texts;

inline QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A settings file as the program's own first run leaves it, ready for a later run.
struct LaterRun {
    QStringList startup; // further [Startup] lines, "key=value"
    std::array<QString, 4> messages;
};

class Journey : public testing::Test {
protected:
    explicit Journey(Desktop::Session session) : desktop_(session) { Prepare(); }
    Journey() { Prepare(); }
    void Prepare() {
        // Copies keep their permissions, so RF.EXE stays executable.
        std::filesystem::copy(DEMO_GAME_DIR, game_.toStdString(),
                              std::filesystem::copy_options::recursive);
        QDir(home_.path()).mkpath("config/Hostwarden");
        QDir(home_.path()).mkpath("run");
        QFile::remove(ArtifactPath(TestName() + "-hostwarden.log"));
    }
    ~Journey() override {
        if (HasFailure())
            desktop_.Run("import", {"-window", "root", "png:" + ArtifactPath(TestName() + ".png")});
        hostwarden_.Stop();
        // The launcher detaches the servers it starts; end those started in this game copy.
        for (pid_t pid : StartedPids())
            if (QFileInfo(QStringLiteral("/proc/%1/cwd").arg(pid)).canonicalFilePath() ==
                QFileInfo(game_).canonicalFilePath())
                ::kill(pid, SIGKILL);
    }

    // The settings file: written as given or as a later run finds it, read back whole or one
    // section's lines.
    QString SettingsFile() const {
        return home_.filePath("config/Hostwarden/" + kAppName + ".ini");
    }
    QByteArray Settings() const { return ReadFile(SettingsFile()); }
    void Seed(const QByteArray& text) const {
        if (QFile file(SettingsFile());
            !file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            throw std::runtime_error("cannot write the settings file");
    }
    void Seed(const LaterRun& run) const {
        QString text = "[Startup]\nHasRunSetup=1\nRFLocation=" + GameDir() + "\n";
        for (const QString& line : run.startup)
            text += line + "\n";
        text += "\n[Default]\n" + kFirstRunDefaults.join('\n') + "\n";
        for (int k = 0; k < int(run.messages.size()); ++k)
            text += QStringLiteral("Text%1=%2\n").arg(k).arg(run.messages[k]);
        Seed((text + "\n[ConfName]\nConfCount=1\nConf1=DEFAULT\n").toUtf8());
    }
    QStringList Section(const QString& name) const {
        QStringList lines;
        bool inside = false;
        for (const QString& line : QString::fromUtf8(Settings()).split('\n')) {
            if (line.startsWith('[') && line.endsWith(']'))
                inside = line.mid(1, line.size() - 2).compare(name, Qt::CaseInsensitive) == 0;
            else if (inside && !line.isEmpty())
                lines << line;
        }
        return lines;
    }

    // Starts the program; `secondMs` is its "second" in milliseconds (none: a real one).
    Process StartHostwarden(std::optional<int> secondMs = std::nullopt,
                            const QString& program = HOSTWARDEN_BIN) const {
        return Process(program, {},
                       desktop_.Environment() << "HOME=" + home_.path()
                                              << "XDG_CONFIG_HOME=" + home_.filePath("config")
                                              << "XDG_RUNTIME_DIR=" + home_.filePath("run")
                                              // Empty: a real second, whatever this process has.
                                              << "HOSTWARDEN_TEST_SECOND_MS=" +
                                                     (secondMs ? QString::number(*secondMs) : ""),
                       home_.path(), ArtifactPath(TestName() + "-hostwarden.log"));
    }
    // Seeds a later run, starts the program and waits for its main window.
    void StartMain(const LaterRun& run = {}, std::optional<int> secondMs = std::nullopt) {
        Seed(run);
        hostwarden_ = StartHostwarden(secondMs);
        ASSERT_TRUE(main_ = desktop_.WaitFor(kMainTitle, 30s).value_or(0)) << Windows();
    }
    // Clicks the control of the window's form (src/ui/<form>.ui) by its object name: the forms
    // place every control straight on the window, its geometry first.
    bool Click(WindowId window, const QString& form, const QString& control) const {
        const auto m = QRegularExpression("name=\"" + control +
                                              "\">.*?<x>(\\d+)</x>\\s*<y>(\\d+)"
                                              "</y>\\s*<width>(\\d+)</width>\\s*<height>(\\d+)<",
                                          QRegularExpression::DotMatchesEverythingOption)
                           .match(QString::fromUtf8(ReadFile(FORMS_DIR "/" + form + ".ui")));
        EXPECT_TRUE(m.hasMatch()) << control << " not found in " << form << ".ui";
        const auto at = [&](int i) { return m.captured(i).toInt(); };
        return window && m.hasMatch() &&
               desktop_.Click(window, {at(1) + at(3) / 2, at(2) + at(4) / 2});
    }
    bool ClickMain(const QString& control) const { return Click(main_, "Hostwarden", control); }
    // Activates the box and presses `keys` on it, as an operator answers it.
    bool Answer(WindowId box, const QString& keys) const {
        return desktop_.Activate(box) && desktop_.Key(keys);
    }
    bool Answer(const QString& title, const QString& keys) const {
        const auto box = desktop_.WaitFor(title);
        EXPECT_TRUE(box) << title << " missing; windows: " << Windows();
        return box && Answer(*box, keys);
    }
    std::string Windows() const { return desktop_.Titles().join(", ").toStdString(); }
    QString Clipboard() const {
        return desktop_.Run("xclip", {"-o", "-selection", "clipboard"}).value_or("");
    }

    QString GameDir() const { return game_ + "/"; }
    QString GameFile(const QString& name) const { return game_ + "/" + name; }
    // The complete lines of a file of the game; a last line without its end is left out.
    QStringList GameLines(const QString& name) const {
        QStringList lines = QString::fromUtf8(ReadFile(GameFile(name))).split('\n');
        lines.removeLast();
        return lines;
    }
    QStringList Transcript() const { return GameLines("transcript.txt"); }
    bool WaitForTranscript(int lines, std::chrono::milliseconds timeout) const {
        return WaitUntil([&] { return Transcript().size() >= lines; }, timeout, 10ms);
    }
    int KeyCount() const { return int(GameLines("keys.log").size()); }
    // The lines typed, without their Enter and an unfinished rest (keys.log: "<ms> <code>" a
    // key, the time since the stand-in started).
    QStringList KeyTexts() const {
        QString typed;
        for (const QString& key : GameLines("keys.log"))
            typed += QChar(key.section(' ', 1).toInt());
        QStringList texts = typed.split(QChar(13));
        texts.removeLast();
        return texts;
    }
    // Of the servers' "started pid N" events, oldest first.
    std::vector<pid_t> StartedPids() const {
        std::vector<pid_t> pids;
        for (const QString& line : GameLines("events.txt"))
            if (line.startsWith("started pid "))
                pids.push_back(pid_t(line.section(' ', 2).toInt()));
        return pids;
    }

    Desktop desktop_;
    QTemporaryDir home_, gameParent_;
    QString game_ = home_.filePath("game");
    Process hostwarden_;
    WindowId main_ = 0;

private:
    static QString TestName() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        return QString(info->test_suite_name() + QString("-") + info->name()).replace('/', '-');
    }
};

} // namespace e2e
