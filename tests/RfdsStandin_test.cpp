#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// The stand-in explains itself without a display, and refuses to run without an X display
// rather than open a window that no X11 program can see. What it records of each start
// (commandline.txt, events.txt) is read and checked by the end-to-end journeys.
TEST(RfdsStandinTest, ShowsItsUsageAndNeedsAnXDisplayToRun) {
    const std::tuple<QStringList, int, QByteArray> rows[] = {
        {{"--help"}, 0, "Usage: RF.EXE -dedicated"},
        {{"-dedicated", "DEFAULT"}, 2, "RF.EXE: no X display (DISPLAY is not set)"}};
    for (const auto& [args, status, output] : rows) {
        QTemporaryDir game;
        QProcess standin;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove("DISPLAY");
        standin.setProcessEnvironment(env);
        standin.setWorkingDirectory(game.path());
        standin.start(STANDIN_BIN, args);
        ASSERT_TRUE(standin.waitForFinished(20000));
        EXPECT_EQ(standin.exitCode(), status);
        EXPECT_TRUE((status ? standin.readAllStandardError() : standin.readAllStandardOutput())
                        .startsWith(output));
    }
}

} // namespace
