// The one end-to-end fixture: a private X session with openbox, a throw-away home, a
// private copy of the demo game and the real hostwarden binary. The stand-in server the
// program launches leaves its witnesses (transcript.txt, keys.log, events.txt,
// commandline.txt) in the game copy.
#pragma once

#include "Desktop.h"
#include "Texts.h"
#include "XSession.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <vector>

// Lets test failures show texts as text.
inline std::ostream& operator<<(std::ostream& os, const QString& text) {
    return os << '"' << text.toStdString() << '"';
}

namespace e2e {

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

QByteArray ReadFile(const QString& path);

class Journey : public testing::Test {
protected:
    Journey();
    ~Journey() override;

    // The settings file: written as given, read back whole or one section's lines.
    void Seed(const QByteArray& text) const;
    void Seed(const LaterRun& run) const;
    QByteArray Settings() const { return ReadFile(SettingsFile()); }
    QStringList Section(const QString& name) const;

    // Starts the program; `secondMs` is its "second" in milliseconds (none: a real one).
    Process StartHostwarden(std::optional<int> secondMs = std::nullopt) const;
    // Seeds a later run, starts the program and waits for its main window.
    void StartMain(const LaterRun& run = {}, std::optional<int> secondMs = std::nullopt);
    // Clicks the control of the window's form (src/ui/<form>.ui) by its object name.
    bool Click(WindowId window, const QString& form, const QString& control) const;
    bool ClickMain(const QString& control) const { return Click(main_, "Hostwarden", control); }
    // Activates the box and presses `keys` on it, as an operator answers it.
    bool Answer(WindowId box, const QString& keys) const {
        return desktop_.Activate(box) && desktop_.PressKey(keys);
    }
    std::string Windows() const { return desktop_.WindowTitles().join(", ").toStdString(); }

    // The game copy and the stand-in's witnesses in it.
    QString GameDir() const { return game_ + "/"; }
    QString GameFile(const QString& name) const { return game_ + "/" + name; }
    // The complete lines of a file of the game; a last line without its end is left out.
    QStringList GameLines(const QString& name) const;
    QStringList Transcript() const { return GameLines("transcript.txt"); }
    bool WaitForTranscript(int lines, std::chrono::milliseconds timeout) const {
        return WaitUntil([&] { return Transcript().size() >= lines; }, timeout, 10ms);
    }
    int KeyCount() const { return int(GameLines("keys.log").size()); }
    std::vector<KeyLine> KeyLines() const; // the lines ended by an Enter
    // Pids of the servers' "started pid N" events, oldest first.
    std::vector<pid_t> StartedPids() const;

    XSession session_;
    Desktop desktop_{session_.Display()};
    QTemporaryDir home_, gameParent_;
    QString game_;
    Process hostwarden_;
    WindowId main_ = 0;

private:
    QString SettingsFile() const;
};

} // namespace e2e
