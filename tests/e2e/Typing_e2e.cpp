// Typing a chat line into a server console one character at a time, as the automatic
// messages do: activate the console by its title, then send the character through the key
// sequence sender and XTest. The consoles are an xterm running cat and the stand-in.
#include "Journey.h"

#include "automation/ModPushKeys.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11WindowServices.h"

using namespace e2e;

namespace {

// Every character that needs Shift on a US layout, and most that do not.
const QString kLine = QStringLiteral("say Hello, World! it's (ok) <x>: \"q\" @#$&* =;/.-[]\\_|?");

class Typing : public Journey, public testing::WithParamInterface<bool> {};

TEST_P(Typing, TheConsoleReceivesTheLineExactly) {
    const bool standin = GetParam();
    session_.UseInThisProcess();
    X11WindowServices services(session_.Display().toLocal8Bit().constData());
    X11Keyboard keyboard; // opens $DISPLAY, pointed at the session, on first use
    ASSERT_TRUE(services.IsConnected());
    // The stand-in in the game copy writes transcript.txt; the xterm's cat writes the same.
    Process console = standin
        ? Process(QStringLiteral(STANDIN_BIN), {"-dedicated", "TYPING"},
                  {session_.Environment() << "QT_QPA_PLATFORM=xcb", game_,
                   ArtifactPath("typing-standin.log")})
        : Process("xterm", {"-T", kServerTitle, "-e", "sh", "-c", "cat > transcript.txt"},
                  {session_.Environment(), game_});

    // The console may map before it takes the focus, so every character waits until
    // activation reports the console in front with the focus.
    const auto activated = [&] {
        return services.ActivateByTitle(kServerTitle) == ActivateResult::Activated;
    };
    ASSERT_TRUE(WaitUntil(activated, 15s)) << "the console never took the focus";
    ModPushKeys keys(keyboard);
    for (const QChar ch : kLine + "~") {
        ASSERT_TRUE(WaitUntil(activated, 5s)) << "lost the console before " << QString(ch);
        keys.PushKeys(QString(ch));
    }

    const QByteArray expected = kLine.toUtf8() + "\n";
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(GameFile("transcript.txt")) == expected; }, 10s))
        << "typed: " << ReadFile(GameFile("transcript.txt")).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Consoles, Typing, testing::Values(false, true),
                         [](const auto& info) { return info.param ? "Standin" : "Xterm"; });

} // namespace
