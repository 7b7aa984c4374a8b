// One run of the real program for the automatic-message tests: a private X session, a
// throw-away home seeded with a configuration, a private copy of the demo game, and the
// program with its main window shown. The stand-in server it launches leaves its
// witnesses (transcript.txt, keys.log, events.txt, commandline.txt) in that game copy.
#pragma once

#include "Artifacts.h"
#include "Desktop.h"
#include "Seeds.h"
#include "TempHome.h"
#include "Wait.h"
#include "XSession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include <signal.h>
#include <sys/types.h>

// Lets test failures show texts as text.
inline void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}

namespace e2e {

inline const QString kMainTitle = QStringLiteral("Hostwarden 2.0.1 by Velloquin");
inline const QString kServerTitle = QStringLiteral("Red Faction Dedicated Server");
inline const QString kAppName = QStringLiteral("Hostwarden 2.0");
// Centres of "Launch" and "Auto Message" in the main window's client area.
inline const QPoint kLaunchButton{136 + 137 / 2, 424 + 65 / 2};
inline const QPoint kAutoMessageBox{16 + 8, 280 + 17 / 2};

// What the settings file holds before the program starts.
struct Seed {
    std::array<QString, 4> messages; // Text0 … Text3
    QString textRate;                // [Startup] TextRate; empty: not stored
    QString msgRate;                 // [Startup] MsgRate; empty: not stored
    QString servRec;                 // [Startup] ServRec; empty: not stored
};

// The settings as the program's own first run leaves them, with the seed's values.
inline QByteArray SettingsText(const QString& gameDir, const Seed& seed) {
    LaterRun run;
    run.rfLocation = gameDir + "/";
    run.messages = seed.messages;
    if (!seed.textRate.isEmpty())
        run.startup << "TextRate=" + seed.textRate;
    if (!seed.msgRate.isEmpty())
        run.startup << "MsgRate=" + seed.msgRate;
    if (!seed.servRec.isEmpty())
        run.startup << "ServRec=" + seed.servRec;
    return LaterRunSettings(run);
}

inline QByteArray ReadBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The complete lines of a text file; a last line without its line end is left out.
inline QStringList ReadLines(const QString& path) {
    QStringList lines = QString::fromUtf8(ReadBytes(path)).split('\n');
    lines.removeLast();
    return lines;
}

// One character as the stand-in saw it arrive.
struct KeyPress {
    qint64 ms = 0; // since the stand-in started
    int code = 0;  // Unicode; 13 for Enter
};

inline std::vector<KeyPress> ReadKeyLog(const QString& path) {
    std::vector<KeyPress> keys;
    for (const QString& line : ReadLines(path)) {
        const QStringList fields = line.split(' ');
        if (fields.size() == 2)
            keys.push_back({fields[0].toLongLong(), fields[1].toInt()});
    }
    return keys;
}

// The key log cut into console lines, each ending with its Enter.
inline std::vector<std::vector<KeyPress>> KeyLines(const std::vector<KeyPress>& keys) {
    std::vector<std::vector<KeyPress>> lines(1);
    for (const KeyPress& key : keys) {
        lines.back().push_back(key);
        if (key.code == 13)
            lines.emplace_back();
    }
    lines.pop_back(); // the unfinished rest
    return lines;
}

inline QString Text(const std::vector<KeyPress>& line) {
    QString text;
    for (const KeyPress& key : line)
        if (key.code != 13)
            text += QChar(key.code);
    return text;
}

// Milliseconds between consecutive characters of one line.
inline std::vector<qint64> Gaps(const std::vector<KeyPress>& line) {
    std::vector<qint64> gaps;
    for (std::size_t i = 1; i < line.size(); ++i)
        gaps.push_back(line[i].ms - line[i - 1].ms);
    return gaps;
}

inline qint64 Median(std::vector<qint64> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

class AutomationRun {
public:
    // secondMs: the program's "second" in milliseconds; nothing: a real second.
    AutomationRun(const Seed& seed, std::optional<int> secondMs)
        : session_(std::make_unique<XSession>()), desktop_(*session_) {
        const std::filesystem::path game =
            std::filesystem::path(gameParent_.path().toStdString()) / "game";
        std::filesystem::copy(DemoGameDir().toStdString(), game,
                              std::filesystem::copy_options::recursive);
        game_ = QString::fromStdString(game.string());
        if (!QFileInfo(QDir(game_).filePath("RF.EXE")).isExecutable())
            throw std::runtime_error("the game copy lost its executable RF.EXE");
        home_.WriteSettings(kAppName, SettingsText(game_, seed));

        QStringList env = session_->Environment() + home_.Environment();
        // Empty (a real second) also when this test process was given one.
        env << "HOSTWARDEN_TEST_SECOND_MS=" + (secondMs ? QString::number(*secondMs) : QString());
        const QString log = ArtifactPath(TestName() + "-hostwarden.log");
        hostwarden_ = std::make_unique<Process>(HostwardenBinary(), QStringList{},
                                                ProcessOptions{env, home_.Path(), log, log});
        main_ = desktop_.WaitForWindow(kMainTitle, TitleMatch::Exact, 30s).value_or(0);
    }

    ~AutomationRun() {
        if (testing::Test::HasFailure())
            desktop_.Screenshot(TestName() + "-at-failure");
        hostwarden_.reset();
        // The launcher detaches the servers it starts; end the ones this run started.
        for (pid_t pid : StartedPids())
            if (QFileInfo(QStringLiteral("/proc/%1/cwd").arg(pid)).canonicalFilePath() ==
                QFileInfo(game_).canonicalFilePath())
                ::kill(pid, SIGKILL);
    }

    AutomationRun(const AutomationRun&) = delete;
    AutomationRun& operator=(const AutomationRun&) = delete;

    const Desktop& desktop() const { return desktop_; }
    const XSession& session() const { return *session_; }
    WindowId MainWindow() const { return main_; }
    bool HostwardenRunning() { return hostwarden_->IsRunning(); }
    QString GameFile(const QString& name) const { return QDir(game_).filePath(name); }

    bool ClickLaunch() const { return ClickMain(kLaunchButton); }

    bool ClickMain(QPoint position) const { return main_ && desktop_.Click(main_, position); }

    QStringList Transcript() const { return ReadLines(GameFile("transcript.txt")); }
    std::vector<KeyPress> Keys() const { return ReadKeyLog(GameFile("keys.log")); }

    bool WaitForTranscript(int lines, std::chrono::milliseconds timeout) const {
        return WaitUntil([&] { return Transcript().size() >= lines; }, timeout, 10ms);
    }

    // Pids of the "started pid N" events, oldest first.
    std::vector<pid_t> StartedPids() const {
        std::vector<pid_t> pids;
        static const QRegularExpression started(QStringLiteral("^started pid (\\d+)$"));
        for (const QString& line : ReadLines(GameFile("events.txt"))) {
            const auto match = started.match(line);
            if (match.hasMatch())
                pids.push_back(pid_t(match.captured(1).toInt()));
        }
        return pids;
    }

    static QString TestName() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        QString name = info ? QString::fromUtf8(info->test_suite_name()) + "-" + info->name()
                            : QStringLiteral("run");
        return name.replace('/', '-');
    }

private:
    std::unique_ptr<XSession> session_;
    Desktop desktop_;
    TempHome home_;
    QTemporaryDir gameParent_;
    QString game_;
    std::unique_ptr<Process> hostwarden_;
    WindowId main_ = 0;
};

} // namespace e2e
