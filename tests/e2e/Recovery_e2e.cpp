// A server that dies while automatic messages run: with "Server Recover" the program
// starts it again at the next due line and the messages go on; without, the operator
// is told once and the messages stop.
#include "AutomationRun.h"

#include <gtest/gtest.h>

using namespace e2e;

namespace {

constexpr int kSecondMs = 20;
constexpr auto kInterval = std::chrono::milliseconds(180 * kSecondMs);
const QString kServerError = QStringLiteral("Server Error");
const QStringList kBatch = {"say hello one", "say third box"};

Seed RecoverySeed(const QString& servRec) {
    Seed seed;
    seed.messages = {"hello one", "", "third box", ""};
    seed.textRate = "50";
    seed.servRec = servRec;
    return seed;
}

// Launches, lets the first batch be typed, then kills the server as a crash would.
void LaunchAndKillAfterFirstBatch(AutomationRun& run) {
    ASSERT_NE(run.MainWindow(), 0u) << run.desktop().WindowTitles().join(", ").toStdString();
    ASSERT_TRUE(run.ClickLaunch());
    const auto server = run.desktop().WaitForWindow(kServerTitle, TitleMatch::Exact, 20s);
    ASSERT_TRUE(server);
    ASSERT_TRUE(run.WaitForTranscript(2, 30s)) << run.Transcript().join(" | ").toStdString();
    ASSERT_EQ(run.Transcript(), kBatch);
    ASSERT_EQ(run.StartedPids().size(), 1u);

    ASSERT_EQ(::kill(run.StartedPids().front(), SIGKILL), 0);
    ASSERT_TRUE(run.desktop().WaitForWindowGone(*server));
}

TEST(Recovery, WithServerRecoverTheServerIsStartedAgainAndMessagesResume) {
    AutomationRun run(RecoverySeed("1"), kSecondMs);
    LaunchAndKillAfterFirstBatch(run);
    if (HasFatalFailure())
        return;
    const QByteArray commandLine = ReadBytes(run.GameFile("commandline.txt"));
    ASSERT_FALSE(commandLine.isEmpty());
    ASSERT_TRUE(QFile::remove(run.GameFile("commandline.txt")));

    // Noticed at the first key of the next batch, one interval after the first.
    ASSERT_TRUE(WaitUntil([&] { return run.StartedPids().size() == 2; }, kInterval + 15s))
        << ReadBytes(run.GameFile("events.txt")).toStdString();
    EXPECT_NE(run.StartedPids()[1], run.StartedPids()[0]);
    EXPECT_TRUE(run.desktop().WaitForWindow(kServerTitle));
    EXPECT_TRUE(
        WaitUntil([&] { return ReadBytes(run.GameFile("commandline.txt")) == commandLine; }, 10s))
        << "the new server's command line: "
        << ReadBytes(run.GameFile("commandline.txt")).toStdString();

    // The batch that found the server gone is dropped; the next one reaches the new server.
    ASSERT_TRUE(run.WaitForTranscript(4, kInterval + 20s))
        << run.Transcript().join(" | ").toStdString();
    EXPECT_EQ(run.Transcript(), kBatch + kBatch);
    const auto lines = KeyLines(run.Keys()); // the new server's own key log
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(Text(lines[0]), kBatch[0]);
    EXPECT_EQ(Text(lines[1]), kBatch[1]);
    EXPECT_FALSE(run.desktop().FindWindow(kServerError));
    EXPECT_TRUE(run.HostwardenRunning());
}

TEST(Recovery, WithoutServerRecoverTheOperatorIsToldOnceAndMessagesStop) {
    AutomationRun run(RecoverySeed("0"), kSecondMs);
    LaunchAndKillAfterFirstBatch(run);
    if (HasFatalFailure())
        return;

    const auto box = run.desktop().WaitForWindow(kServerError, TitleMatch::Exact, kInterval + 15s);
    ASSERT_TRUE(box) << run.desktop().WindowTitles().join(", ").toStdString();
    int boxes = 0;
    for (const QString& title : run.desktop().WindowTitles())
        boxes += title == kServerError;
    EXPECT_EQ(boxes, 1);
    run.desktop().Screenshot(AutomationRun::TestName() + "-server-error", *box);

    ASSERT_TRUE(run.desktop().Activate(*box));
    ASSERT_TRUE(run.desktop().PressKey("Return"));
    ASSERT_TRUE(run.desktop().WaitForWindowGone(*box));

    // The countdown is off now. Watch for three intervals that nothing comes back:
    // neither the box nor a new server.
    const bool cameBack = WaitUntil(
        [&] {
            return run.desktop().FindWindow(kServerError) || run.StartedPids().size() > 1 ||
                   run.desktop().FindWindow(kServerTitle);
        },
        3 * kInterval, 100ms);
    EXPECT_FALSE(cameBack) << run.desktop().WindowTitles().join(", ").toStdString();
    EXPECT_EQ(run.StartedPids().size(), 1u);
    EXPECT_EQ(run.Transcript(), kBatch);

    // Still alive and listening: the operator's own launch brings the messages back.
    ASSERT_TRUE(run.ClickLaunch());
    ASSERT_TRUE(WaitUntil([&] { return run.StartedPids().size() == 2; }, 20s));
    ASSERT_TRUE(run.WaitForTranscript(4, kInterval + 20s))
        << run.Transcript().join(" | ").toStdString();
    EXPECT_EQ(run.Transcript(), kBatch + kBatch);
    EXPECT_FALSE(run.desktop().FindWindow(kServerError));
}

} // namespace
