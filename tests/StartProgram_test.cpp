#include "server/StartProgram.h"

#include "RecordingLauncher.h"

#include <gtest/gtest.h>

namespace {

// Program, parameters, folder; the line after the split when it changed.
TEST(SplitCommandLine, CutsProgramParametersAndFolder) {
    const char* const rows[][5] = {
        {R"(C:\Games\RF\RF.EXE -dedicated Default -lanonly)", R"(C:\Games\RF\RF.EXE)",
         "-dedicated Default -lanonly", R"(C:\Games\RF)"},
        {R"("C:\Program Files\RF\RF.EXE" -dedicated My Server)", R"(C:\Program Files\RF\RF.EXE)",
         "-dedicated My Server", R"(C:\Program Files\RF)",
         R"(C:\Program Files\RF\RF.EXE -dedicated My Server)"},
        {"RF.EXE -dedicated Default", "RF.EXE", "-dedicated Default", R"(C:\Hostwarden)"},
        // A game directory with a blank splits the program path.
        {R"(C:\My Games\RF\RF.EXE -dedicated Default)", R"(C:\My)",
         R"(Games\RF\RF.EXE -dedicated Default)", R"(C:\)"},
        // Only the leading blanks of the parameters go.
        {R"(C:\RF\RF.EXE   -dedicated  Two  Blanks )", R"(C:\RF\RF.EXE)",
         "-dedicated  Two  Blanks ", R"(C:\RF)"},
        {R"("C:\RF\RF.EXE")", R"(C:\RF\RF.EXE)", "", R"(C:\RF)", R"(C:\RF\RF.EXE)"},
        // An unclosed quote leaves the line whole, quote included.
        {R"("C:\RF\RF.EXE -dedicated X)", R"("C:\RF\RF.EXE -dedicated X)", "", R"("C:\RF)"},
        {"", "", "", R"(C:\Hostwarden)"},
        {"/RF.EXE -dedicated Default", "/RF.EXE", "-dedicated Default", "/"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row[0]);
        QString line = row[0];
        const CommandSplit split = SplitCommandLine(line, R"(C:\Hostwarden)");
        EXPECT_EQ(QStringList({split.program, split.parameters, split.workingDirectory, line}),
                  QStringList({row[1], row[2], row[3], row[4] ? row[4] : row[0]}));
    }
}

// Below 32 the whole line starts too; the caller always gets the first start's code.
TEST(StartProgram, StartsTheSplitProgramAndFallsBackToTheWholeLine) {
    const struct {
        std::int32_t primary, fallback;
        const char* workingDirectory = nullptr;
        bool askFallback = true; // the caller need not ask for the second start's code
    } rows[] = {{42, 0}, {42, 0, R"(D:\Elsewhere)"}, {0, 42}, {31, 2}, {32, 42}, {2, 0, {}, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.primary << " then " << row.fallback);
        RecordingLauncher launcher;
        launcher.shellResults = {row.primary};
        launcher.commandLineResults = {row.fallback};
        const QString program = R"(C:\My Games\RF\RF.EXE)", parameters = "-dedicated My Server";
        QString line = '"' + program + "\" " + parameters;
        std::int32_t fallback = -1;
        const auto folder =
            row.workingDirectory ? std::optional<QString>(row.workingDirectory) : std::nullopt;
        EXPECT_EQ(StartProgram(launcher, line, 1, folder, row.askFallback ? &fallback : nullptr),
                  row.primary);
        QList<RecordingLauncher::Call> expected = {
            {program, parameters, folder.value_or(R"(C:\My Games\RF)"), {}, 1}};
        if (row.primary < 32)
            expected.append({{}, {}, {}, program + " " + parameters, 1});
        EXPECT_EQ(launcher.calls, expected);
        EXPECT_EQ(fallback, row.primary < 32 && row.askFallback ? row.fallback : -1);
    }
}

} // namespace
