// The harness itself: what other end-to-end tests rely on when they type, click, look
// and seed settings.
#include "Artifacts.h"
#include "Desktop.h"
#include "TempHome.h"
#include "XSession.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace e2e;

namespace {

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(Harness, TypesClicksAndLooksLikeAPerson) {
    XSession session;
    Desktop desktop(session);
    QTemporaryDir dir;
    const QString typed = dir.filePath("typed.txt");
    Process xterm("xterm", {"-T", "Typing Pad", "-e", "sh", "-c", "cat > " + typed},
                  ProcessOptions{session.Environment(), {}, {}, {}});

    const auto id = desktop.WaitForWindow("typing pad", TitleMatch::Contains);
    ASSERT_TRUE(id.has_value()) << desktop.WindowTitles().join(", ").toStdString();
    EXPECT_EQ(desktop.FindWindow("Typing Pad"), id);
    EXPECT_FALSE(desktop.FindWindow("Typing"));
    const auto geometry = desktop.WindowGeometry(*id);
    ASSERT_TRUE(geometry.has_value());
    EXPECT_GT(geometry->width(), 50);
    EXPECT_GT(geometry->top(), 0) << "the client area sits below the title bar";

    ASSERT_TRUE(desktop.Click(*id, {20, 20}));
    ASSERT_TRUE(desktop.Activate(*id));
    ASSERT_TRUE(desktop.TypeText("say Hello, World!"));
    ASSERT_TRUE(desktop.PressKey("Return"));
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(typed) == "say Hello, World!\n"; }, 10s))
        << ReadFile(typed).toStdString();

    const QString shot = desktop.Screenshot("harness-typing-pad", *id);
    ASSERT_FALSE(shot.isEmpty());
    EXPECT_TRUE(ReadFile(shot).startsWith("\x89PNG"));

    xterm.Stop();
    EXPECT_TRUE(desktop.WaitForWindowGone(*id));
    EXPECT_FALSE(xterm.IsRunning());
}

TEST(Harness, TempHomeHoldsTheSettingsFileAsWritten) {
    TempHome home;
    const QByteArray text = "[Startup]\nHasRunSetup=1\n[Caf\xc3\xa9]\nservname=A=B \n";
    EXPECT_FALSE(home.HasSettings("Hostwarden"));
    home.WriteSettings("Hostwarden", text);
    EXPECT_EQ(home.ReadSettings("Hostwarden"), text);
    EXPECT_TRUE(home.SettingsFile("Hostwarden").startsWith(home.ConfigHome() + "/Hostwarden/"));
    EXPECT_TRUE(home.Environment().contains("XDG_CONFIG_HOME=" + home.ConfigHome()));
}

TEST(Harness, AProgramThatCannotStartIsReported) {
    EXPECT_THROW(Process("/nonexistent/program", {}), std::runtime_error);
    Process quick("sh", {"-c", "exit 3"});
    EXPECT_EQ(quick.WaitForExit(10s), 3);
}

} // namespace
