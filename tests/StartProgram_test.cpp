#include "server/StartProgram.h"

#include "RecordingLauncher.h"

#include <gtest/gtest.h>

namespace {

TEST(SplitCommandLine, CutsProgramParametersAndFolder) {
    const char* const current = "C:\\Hostwarden";
    const struct {
        const char* line;
        const char* program;
        const char* parameters;
        const char* workingDirectory;
        const char* lineAfter = nullptr; // the caller's text after the split, if it changed
    } rows[] = {
        {R"(C:\Games\RF\RF.EXE -dedicated Default -lanonly -port 1234)", R"(C:\Games\RF\RF.EXE)",
         "-dedicated Default -lanonly -port 1234", R"(C:\Games\RF)"},
        {R"("C:\Program Files\RF\RF.EXE" -dedicated My Server)", R"(C:\Program Files\RF\RF.EXE)",
         "-dedicated My Server", R"(C:\Program Files\RF)",
         R"(C:\Program Files\RF\RF.EXE -dedicated My Server)"},
        {"RF.EXE -dedicated Default", "RF.EXE", "-dedicated Default", current},
        {R"(C:\RF.EXE -dedicated Default)", R"(C:\RF.EXE)", "-dedicated Default", R"(C:\)"},
        {R"(C:\Games\RF.EXE -dedicated Default)", R"(C:\Games\RF.EXE)", "-dedicated Default",
         R"(C:\Games)"},
        // A game directory with a blank splits the program path.
        {R"(C:\My Games\RF\RF.EXE -dedicated Default)", R"(C:\My)",
         R"(Games\RF\RF.EXE -dedicated Default)", R"(C:\)"},
        {R"(D:\Games\Red Faction\RF.EXE -dedicated Default)", R"(D:\Games\Red)",
         R"(Faction\RF.EXE -dedicated Default)", R"(D:\Games)"},
        // Only the leading blanks of the parameters go.
        {R"(C:\RF\RF.EXE   -dedicated  Two  Blanks )", R"(C:\RF\RF.EXE)",
         "-dedicated  Two  Blanks ", R"(C:\RF)"},
        {R"("C:\RF\RF.EXE")", R"(C:\RF\RF.EXE)", "", R"(C:\RF)", R"(C:\RF\RF.EXE)"},
        // An unclosed quote leaves the line whole, quote included.
        {R"("C:\RF\RF.EXE -dedicated X)", R"("C:\RF\RF.EXE -dedicated X)", "", R"("C:\RF)"},
        {"", "", "", current},
        {"/games/rf/RF.EXE -dedicated Default -lanonly -port 1234", "/games/rf/RF.EXE",
         "-dedicated Default -lanonly -port 1234", "/games/rf"},
        {"/RF.EXE -dedicated Default", "/RF.EXE", "-dedicated Default", "/"},
        {R"("/home/op/my games/rf/RF.EXE" -dedicated Default)", "/home/op/my games/rf/RF.EXE",
         "-dedicated Default", "/home/op/my games/rf",
         "/home/op/my games/rf/RF.EXE -dedicated Default"},
        {"/home/op/my games/rf/RF.EXE -dedicated Default", "/home/op/my",
         "games/rf/RF.EXE -dedicated Default", "/home/op"},
        {"/my games/RF.EXE -dedicated Default", "/my", "games/RF.EXE -dedicated Default", "/"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        QString line = QString::fromUtf8(row.line);
        const CommandSplit split = SplitCommandLine(line, QString::fromUtf8(current));
        EXPECT_EQ(split.program, QString::fromUtf8(row.program));
        EXPECT_EQ(split.parameters, QString::fromUtf8(row.parameters));
        EXPECT_EQ(split.workingDirectory, QString::fromUtf8(row.workingDirectory));
        EXPECT_EQ(line, QString::fromUtf8(row.lineAfter ? row.lineAfter : row.line));
    }
}

// The split program is started in its folder, or in the one given; when that start gives a
// code below 32, the whole (unquoted) line is started, and the caller always gets the first
// start's code, whatever the second one did.
TEST(StartProgram, StartsTheSplitProgramAndFallsBackToTheWholeLine) {
    const struct {
        std::int32_t primary, fallback;
        bool fallsBack;
        const char* workingDirectory = nullptr;
    } rows[] = {{42, 0, false},  {42, 0, false, R"(D:\Elsewhere)"},
                {2, 42, true},   {2, 0, true},
                {0, 42, true},   {31, 2, true},
                {32, 42, false}, {33, 42, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.primary << " then " << row.fallback);
        RecordingLauncher launcher;
        launcher.shellResults = {row.primary};
        launcher.commandLineResults = {row.fallback};
        QString line = R"("C:\My Games\RF\RF.EXE" -dedicated My Server -mod Rocket Ball)";
        std::int32_t fallback = -1;
        EXPECT_EQ(StartProgram(launcher, line, 1,
                               row.workingDirectory ? std::optional<QString>(row.workingDirectory)
                                                    : std::nullopt,
                               &fallback),
                  row.primary);
        ASSERT_EQ(launcher.calls.size(), row.fallsBack ? 2 : 1);
        const auto& call = launcher.calls[0];
        EXPECT_EQ(call.kind, RecordingLauncher::Call::Kind::ShellExecute);
        EXPECT_EQ(call.program, R"(C:\My Games\RF\RF.EXE)");
        EXPECT_EQ(call.parameters, "-dedicated My Server -mod Rocket Ball");
        EXPECT_EQ(call.workingDirectory,
                  row.workingDirectory ? row.workingDirectory : R"(C:\My Games\RF)");
        EXPECT_EQ(call.windowStyle, 1);
        EXPECT_EQ(fallback, row.fallsBack ? row.fallback : -1);
        if (row.fallsBack) {
            EXPECT_EQ(launcher.calls[1].kind, RecordingLauncher::Call::Kind::CommandLine);
            EXPECT_EQ(launcher.calls[1].commandLine,
                      R"(C:\My Games\RF\RF.EXE -dedicated My Server -mod Rocket Ball)");
            EXPECT_EQ(launcher.calls[1].windowStyle, 1);
        }
    }
    RecordingLauncher launcher; // the caller need not ask for the second start's code
    launcher.shellResults = {2};
    QString line = "RF.EXE -dedicated Default";
    EXPECT_EQ(StartProgram(launcher, line, 1), 2);
    EXPECT_EQ(launcher.calls.size(), 2);
}

} // namespace
