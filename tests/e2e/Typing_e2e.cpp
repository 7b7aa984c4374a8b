// Typing a chat line into a server console one character at a time, as the automatic
// messages do: activate the console by its title, then send the character through the key
// sequence sender and XTest. The consoles are an xterm running cat and the stand-in.
#include "Artifacts.h"
#include "Desktop.h"
#include "XSession.h"

#include "automation/ModPushKeys.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11WindowServices.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace e2e;

namespace {

const QString kServerTitle = QStringLiteral("Red Faction Dedicated Server");
// Every character that needs Shift on a US layout, and most that do not.
const QString kLine = QStringLiteral("say Hello, World! it's (ok) <x>: \"q\" @#$&* =;/.-[]\\_|?");

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class TypingTest : public testing::Test {
protected:
    void SetUp() override {
        session_.UseInThisProcess();
        ASSERT_TRUE(services_.IsConnected());
        ASSERT_TRUE(work_.isValid());
    }

    ActivateResult Activate() { return services_.ActivateByTitle(kServerTitle); }

    // The console may map before it takes the focus, so every character waits until
    // activation reports the console in front with the focus.
    void TypeLine() {
        ASSERT_TRUE(WaitUntil([&] { return Activate() == ActivateResult::Activated; }, 15s))
            << "the console never took the focus";
        ModPushKeys keys(keyboard_);
        for (const QChar ch : kLine + "~") {
            ASSERT_TRUE(WaitUntil([&] { return Activate() == ActivateResult::Activated; }, 5s))
                << "lost the console before " << QString(ch).toStdString();
            keys.PushKeys(QString(ch));
        }
    }

    XSession session_;
    QTemporaryDir work_;
    X11WindowServices services_{session_.Display().toLocal8Bit().constData()};
    X11Keyboard keyboard_; // opens $DISPLAY, pointed at the session, on first use
};

TEST_F(TypingTest, AnXtermReceivesTheLineExactly) {
    const QString file = work_.filePath("typed.txt");
    Process xterm("xterm", {"-T", kServerTitle, "-e", "sh", "-c", "cat > \"$0\"", file},
                  ProcessOptions{session_.Environment(), {}, {}, {}});

    ASSERT_NO_FATAL_FAILURE(TypeLine());

    const QByteArray expected = kLine.toUtf8() + "\n";
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(file) == expected; }, 10s))
        << "typed: " << ReadFile(file).toStdString();
}

TEST_F(TypingTest, TheStandinTranscribesTheLineExactly) {
    ASSERT_FALSE(StandinBinary().isEmpty());
    Process standin(StandinBinary(), {"-dedicated", "TYPING"},
                    ProcessOptions{session_.Environment() + QStringList{"QT_QPA_PLATFORM=xcb"},
                                   work_.path(), ArtifactPath("typing-standin.log"),
                                   ArtifactPath("typing-standin.log")});

    ASSERT_NO_FATAL_FAILURE(TypeLine());

    const QString transcript = work_.filePath("transcript.txt");
    const QByteArray expected = kLine.toUtf8() + "\n";
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(transcript) == expected; }, 10s))
        << "transcript: " << ReadFile(transcript).toStdString();
}

} // namespace
