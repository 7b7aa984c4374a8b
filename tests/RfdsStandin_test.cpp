#include <QProcess>

#include <gtest/gtest.h>

#ifdef STANDIN_BIN

namespace {

// The stand-in explains itself without a display. What it records of each start
// (commandline.txt, events.txt) is read and checked by the end-to-end journeys.
TEST(RfdsStandinTest, ShowsItsUsageWithoutADisplay) {
    QProcess help;
    help.start(STANDIN_BIN, {"--help"});
    ASSERT_TRUE(help.waitForFinished(20000));
    EXPECT_EQ(help.exitCode(), 0);
    EXPECT_TRUE(help.readAllStandardOutput().startsWith("Usage: RF.EXE -dedicated"));
}

} // namespace

#endif
