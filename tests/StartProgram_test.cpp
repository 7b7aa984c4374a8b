#include "server/StartProgram.h"

#include "RecordingLauncher.h"

#include <gtest/gtest.h>

namespace {

struct SplitRow {
    const char* line;
    const char* program;
    const char* parameters;
    const char* workingDirectory;
    const char* lineAfter; // the caller's text after the split
};

const char* const kCurrent = "C:\\Hostwarden";

class SplitCommandLineTest : public ::testing::TestWithParam<SplitRow> {};

TEST_P(SplitCommandLineTest, CutsProgramParametersAndFolder) {
    const SplitRow& row = GetParam();
    QString line = QString::fromUtf8(row.line);
    const CommandSplit split = SplitCommandLine(line, QString::fromUtf8(kCurrent));
    EXPECT_EQ(split.program, QString::fromUtf8(row.program));
    EXPECT_EQ(split.parameters, QString::fromUtf8(row.parameters));
    EXPECT_EQ(split.workingDirectory, QString::fromUtf8(row.workingDirectory));
    EXPECT_EQ(line, QString::fromUtf8(row.lineAfter));
}

INSTANTIATE_TEST_SUITE_P(
    WindowsPaths, SplitCommandLineTest,
    ::testing::Values(
        SplitRow{R"(C:\Games\RF\RF.EXE -dedicated Default -lanonly -port 1234)",
                 R"(C:\Games\RF\RF.EXE)", "-dedicated Default -lanonly -port 1234",
                 R"(C:\Games\RF)", R"(C:\Games\RF\RF.EXE -dedicated Default -lanonly -port 1234)"},
        SplitRow{R"("C:\Program Files\RF\RF.EXE" -dedicated My Server)",
                 R"(C:\Program Files\RF\RF.EXE)", "-dedicated My Server", R"(C:\Program Files\RF)",
                 R"(C:\Program Files\RF\RF.EXE -dedicated My Server)"},
        SplitRow{"RF.EXE -dedicated Default", "RF.EXE", "-dedicated Default", kCurrent,
                 "RF.EXE -dedicated Default"},
        SplitRow{R"(C:\RF.EXE -dedicated Default)", R"(C:\RF.EXE)", "-dedicated Default", R"(C:\)",
                 R"(C:\RF.EXE -dedicated Default)"},
        SplitRow{R"(C:\Games\RF.EXE -dedicated Default)", R"(C:\Games\RF.EXE)",
                 "-dedicated Default", R"(C:\Games)", R"(C:\Games\RF.EXE -dedicated Default)"},
        // A game directory with a blank splits the program path.
        SplitRow{R"(C:\My Games\RF\RF.EXE -dedicated Default)", R"(C:\My)",
                 R"(Games\RF\RF.EXE -dedicated Default)", R"(C:\)",
                 R"(C:\My Games\RF\RF.EXE -dedicated Default)"},
        SplitRow{R"(D:\Games\Red Faction\RF.EXE -dedicated Default)", R"(D:\Games\Red)",
                 R"(Faction\RF.EXE -dedicated Default)", R"(D:\Games)",
                 R"(D:\Games\Red Faction\RF.EXE -dedicated Default)"},
        // Only the leading blanks of the parameters go.
        SplitRow{R"(C:\RF\RF.EXE   -dedicated  Two  Blanks )", R"(C:\RF\RF.EXE)",
                 "-dedicated  Two  Blanks ", R"(C:\RF)",
                 R"(C:\RF\RF.EXE   -dedicated  Two  Blanks )"},
        SplitRow{R"("C:\RF\RF.EXE")", R"(C:\RF\RF.EXE)", "", R"(C:\RF)", R"(C:\RF\RF.EXE)"},
        // An unclosed quote leaves the line whole, quote included.
        SplitRow{R"("C:\RF\RF.EXE -dedicated X)", R"("C:\RF\RF.EXE -dedicated X)", "", R"("C:\RF)",
                 R"("C:\RF\RF.EXE -dedicated X)"},
        SplitRow{"", "", "", kCurrent, ""}));

INSTANTIATE_TEST_SUITE_P(
    LinuxPaths, SplitCommandLineTest,
    ::testing::Values(
        SplitRow{"/games/rf/RF.EXE -dedicated Default -lanonly -port 1234", "/games/rf/RF.EXE",
                 "-dedicated Default -lanonly -port 1234", "/games/rf",
                 "/games/rf/RF.EXE -dedicated Default -lanonly -port 1234"},
        SplitRow{"/RF.EXE -dedicated Default", "/RF.EXE", "-dedicated Default", "/",
                 "/RF.EXE -dedicated Default"},
        SplitRow{R"("/home/op/my games/rf/RF.EXE" -dedicated Default)",
                 "/home/op/my games/rf/RF.EXE", "-dedicated Default", "/home/op/my games/rf",
                 "/home/op/my games/rf/RF.EXE -dedicated Default"},
        SplitRow{"/home/op/my games/rf/RF.EXE -dedicated Default", "/home/op/my",
                 "games/rf/RF.EXE -dedicated Default", "/home/op",
                 "/home/op/my games/rf/RF.EXE -dedicated Default"},
        SplitRow{"/my games/RF.EXE -dedicated Default", "/my", "games/RF.EXE -dedicated Default",
                 "/", "/my games/RF.EXE -dedicated Default"}));

TEST(StartProgramTest, StartsTheSplitProgramOnceWhenItStarts) {
    RecordingLauncher launcher;
    QString line = R"("C:\Program Files\RF\RF.EXE" -dedicated Default)";
    EXPECT_EQ(StartProgram(launcher, line, 1), 42);
    ASSERT_EQ(launcher.calls.size(), 1);
    const auto& call = launcher.calls[0];
    EXPECT_EQ(call.kind, RecordingLauncher::Call::Kind::ShellExecute);
    EXPECT_EQ(call.program, R"(C:\Program Files\RF\RF.EXE)");
    EXPECT_EQ(call.parameters, "-dedicated Default");
    EXPECT_EQ(call.workingDirectory, R"(C:\Program Files\RF)");
    EXPECT_EQ(call.windowStyle, 1);
}

TEST(StartProgramTest, AGivenWorkingDirectoryWins) {
    RecordingLauncher launcher;
    QString line = R"(C:\Games\RF\RF.EXE -dedicated Default)";
    StartProgram(launcher, line, 1, QStringLiteral(R"(D:\Elsewhere)"));
    ASSERT_EQ(launcher.calls.size(), 1);
    EXPECT_EQ(launcher.calls[0].workingDirectory, R"(D:\Elsewhere)");
}

struct FallbackRow {
    std::int32_t primary;
    std::int32_t fallback;
    bool fallbackRuns;
};

class StartProgramFallbackTest : public ::testing::TestWithParam<FallbackRow> {};

// The whole (unquoted) line is started when the first start gives a code below 32, and
// the caller always gets the first start's code, whatever the second one did.
TEST_P(StartProgramFallbackTest, ReturnsThePrimaryResult) {
    const FallbackRow& row = GetParam();
    RecordingLauncher launcher;
    launcher.shellResults = {row.primary};
    launcher.commandLineResults = {row.fallback};
    QString line = R"("C:\My Games\RF\RF.EXE" -dedicated My Server -mod Rocket Ball)";

    EXPECT_EQ(StartProgram(launcher, line, 1), row.primary);

    ASSERT_EQ(launcher.calls.size(), row.fallbackRuns ? 2 : 1);
    if (row.fallbackRuns) {
        const auto& call = launcher.calls[1];
        EXPECT_EQ(call.kind, RecordingLauncher::Call::Kind::CommandLine);
        EXPECT_EQ(call.commandLine,
                  R"(C:\My Games\RF\RF.EXE -dedicated My Server -mod Rocket Ball)");
        EXPECT_EQ(call.windowStyle, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Results, StartProgramFallbackTest,
                         ::testing::Values(FallbackRow{2, 42, true}, FallbackRow{2, 0, true},
                                           FallbackRow{0, 42, true}, FallbackRow{31, 2, true},
                                           FallbackRow{32, 42, false}, FallbackRow{33, 42, false},
                                           FallbackRow{42, 0, false}));

} // namespace
