// The one end-to-end fixture: a private desktop, a throw-away home holding a copy of the demo
// game, and the real hostwarden binary. The stand-in server leaves its witnesses
// (commandline.txt, transcript.txt, keys.log, events.txt) in the game copy.
#pragma once

#include "Desktop.h"
#include "Texts.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <ostream>

// Lets test failures show texts as text.
inline std::ostream& operator<<(std::ostream& os, const QString& text) {
    return os << '"' << text.toStdString() << '"';
}

namespace e2e {

using namespace texts;

inline QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A settings file as the program's own first run leaves it, ready for a later run.
struct LaterRun {
    QString listEntry = "DEFAULT"; // [ConfName] Conf1
    QStringList startup;           // further [Startup] lines, "key=value"
    std::array<QString, 4> messages = {
        "This Dedicated Server is running with Hostwarden 2.0 by Velloquin",
        "Visit us for updates.", "", ""};
};

// One console line as the stand-in saw its keys arrive.
struct KeyLine {
    QString text;           // without its Enter
    std::vector<qint64> ms; // each key's arrival, the Enter's last, since the stand-in started
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
        Seed((text + "\n[ConfName]\nConfCount=1\nConf1=" + run.listEntry + "\n").toUtf8());
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
    std::string Windows() const { return desktop_.Titles().join(", ").toStdString(); }

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
    // The lines of keys.log ended by an Enter ("<ms> <code>" a key).
    std::vector<KeyLine> KeyLines() const {
        std::vector<KeyLine> lines(1);
        for (const QString& line : GameLines("keys.log")) {
            const int code = line.section(' ', 1).toInt();
            lines.back().ms.push_back(line.section(' ', 0, 0).toLongLong());
            if (code == 13)
                lines.emplace_back();
            else
                lines.back().text += QChar(code);
        }
        lines.pop_back(); // the unfinished rest
        return lines;
    }
    QStringList KeyTexts() const {
        QStringList texts;
        for (const KeyLine& line : KeyLines())
            texts << line.text;
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
