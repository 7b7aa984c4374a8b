#include "platform/posix/PosixProcessLauncher.h"

#include "platform/posix/NoCasePath.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Writes where it ran, its parent, its session, its stdin and its argv, a line each, to
// the file named by $HW_RECORD.
const char* const kRecorder = R"sh(#!/bin/sh
{
  pwd -P; echo "$PPID"; cut -d' ' -f6 /proc/$$/stat; readlink /proc/$$/fd/0
  printf '%s\n' "$0" "$@"
} > "$HW_RECORD"
)sh";

enum RecordLine { Pwd, Ppid, Sid, Stdin, Argv };

class PosixProcessLauncherTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(temp.isValid());
        qputenv("HW_RECORD", QFile::encodeName(recordPath));
    }
    void TearDown() override {
        qputenv("PATH", savedPath);
        qunsetenv("HW_RECORD");
    }

    QString Make(const QString& relative, const QByteArray& content, bool executable) {
        QFile file(root + "/" + relative);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly) &&
                    file.write(content) == content.size());
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner |
                            (executable ? QFile::ExeOwner : QFile::Permissions()));
        return file.fileName();
    }
    // "@" stands for the temporary folder.
    QString At(QString text) const { return text.replace('@', root); }

    std::optional<ProgramExit> WaitForExit() {
        std::optional<ProgramExit> exit;
        launcher.OnProgramExit([&](const ProgramExit& e) { exit = e; });
        for (QDeadlineTimer deadline(10000); !exit && !deadline.hasExpired();)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        return exit;
    }

    QTemporaryDir temp;
    const QString root = QFileInfo(temp.path()).canonicalFilePath();
    const QString recordPath = root + "/record.txt";
    const QByteArray savedPath = qgetenv("PATH");
    PosixProcessLauncher launcher;
};

TEST_F(PosixProcessLauncherTest, StartsTheProgramInASessionOfItsOwnWithItsArgumentsInItsFolder) {
    const QString shellDir = "@/g;touch injected&&$(touch injected)|`touch injected`>injected x";
    const QString shellName = "a;touch @/injected $(touch @/injected) `touch @/injected` && "
                              "touch @/injected | cat > @/injected";
    for (const char* program :
         {"Game/rf.sh", "RedFaction/Data/rf.exe", "My Games/Red Faction/rf.exe", "bin/wine"})
        Make(program, kRecorder, true);
    Make(shellDir.mid(2) + "/RF.EXE", kRecorder, true);
    Make("Win/RF.EXE", QByteArray("MZ\x90\0\x03", 5), false);
    const QString wholeLine; // as parameters: start the whole command line
    qputenv("PATH", QFile::encodeName(root + "/bin") + ":" + savedPath);
    const struct {
        QString program; // or the whole command line
        QString parameters;
        QString directory;
        QString argv; // one argument a line
        QString pwd;  // empty: the current folder, inherited
    } rows[] = {
        {"@/Game/rf.sh", "-dedicated  My Server -port 7755", "@/Game",
         "@/Game/rf.sh\n-dedicated\nMy\nServer\n-port\n7755", "@/Game"},
        // Program and folder are found whatever their case.
        {"@/redfaction/DATA/RF.EXE", "-dedicated Default", "@/REDFACTION/data",
         "@/RedFaction/Data/rf.exe\n-dedicated\nDefault", "@/RedFaction/Data"},
        // A missing folder falls back to the program's; no folder inherits the current one.
        {"@/Game/rf.sh", "", "@/Gone", "@/Game/rf.sh", "@/Game"},
        {"@/Game/rf.sh", "", "", "@/Game/rf.sh", ""},
        // A relative program is looked up in the working directory first.
        {"RF.SH", "", "@/Game", "@/Game/rf.sh", "@/Game"},
        // A Windows program runs through wine.
        {"@/Win/RF.EXE", "-dedicated Default -lanonly", "@/Win",
         "@/bin/wine\n@/Win/RF.EXE\n-dedicated\nDefault\n-lanonly", "@/Win"},
        // The whole command line finds a path with blanks, whatever its case.
        {"@/my games/red faction/RF.EXE -dedicated My Server", wholeLine, wholeLine,
         "@/My Games/Red Faction/rf.exe\n-dedicated\nMy\nServer", "@/My Games/Red Faction"},
        // Folder and configuration names full of shell syntax reach the program as plain text
        // and make nothing else run.
        {shellDir + "/rf.exe -dedicated " + shellName, wholeLine, wholeLine,
         shellDir + "/RF.EXE\n-dedicated\n" + QString(shellName).replace(' ', '\n'), shellDir},
    };
    // Our own stdin is a pipe here, so a program that inherited it would show.
    int pipeEnds[2];
    const int ownStdin = dup(STDIN_FILENO);
    ASSERT_TRUE(pipe(pipeEnds) == 0 && dup2(pipeEnds[0], STDIN_FILENO) == STDIN_FILENO);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.program.toStdString());
        EXPECT_EQ(
            row.parameters.isNull()
                ? launcher.StartCommandLine(At(row.program), 1)
                : launcher.ShellExecute(At(row.program), At(row.parameters), At(row.directory), 1),
            42);
        const auto exit = WaitForExit();
        QFile file(recordPath);
        ASSERT_TRUE(exit && file.open(QIODevice::ReadOnly));
        const QStringList record = QString::fromUtf8(file.readAll()).chopped(1).split('\n');
        file.remove();
        const QString pwd =
            row.pwd.isEmpty() ? QFileInfo(QDir::currentPath()).canonicalFilePath() : At(row.pwd);
        EXPECT_EQ(QStringList({record.value(Pwd), record.value(Stdin)}) + record.mid(Argv),
                  QStringList({pwd, "/dev/null"}) + At(row.argv).split('\n'));
        // Ours to watch, and the head of a session of its own.
        EXPECT_EQ(record.mid(Ppid, 2),
                  QStringList({QString::number(getpid()), QString::number(exit->process)}));
        errno = 0; // reaped once ended: no zombie, no child at all
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
    }
    dup2(ownStdin, STDIN_FILENO);
    for (const int fd : {ownStdin, pipeEnds[0], pipeEnds[1]})
        close(fd);
    for (QDirIterator it(root, QDir::AllEntries | QDir::Hidden, QDirIterator::Subdirectories);
         it.hasNext();)
        EXPECT_NE(it.next().section('/', -1), "injected");

    EXPECT_EQ(FindPathNoCase(root + "\\redfaction\\data\\RF.exe"), At("@/RedFaction/Data/rf.exe"));
    EXPECT_FALSE(FindPathNoCase(root + "/RedFaction/Maps/rf.exe"));
}

TEST_F(PosixProcessLauncherTest, FailureGivesASmallErrorCodeAndTheEndIsReported) {
    Make("Game/readme.txt", "just text\n", false);
    Make("Game/garbage", "no program at all\n", true);
    Make("My Games/rf.exe", kRecorder, true);
    const auto start = [&](const char* program) {
        return launcher.ShellExecute(root + "/" + program, "-dedicated x", root, 1);
    };
    EXPECT_EQ(start("Game/RF.EXE"), 2);
    EXPECT_EQ(start("Gone/RF.EXE"), 3);
    EXPECT_EQ(start("Game/readme.txt"), 5);
    EXPECT_EQ(start("Game"), 5);
    EXPECT_EQ(start("Game/garbage"), 11);
    EXPECT_EQ(launcher.StartCommandLine(root + "/My Games/Nothing Here -dedicated x", 1), 2);
    const QByteArray pe32 =
        "MZ" + QByteArray(58, '\0') + QByteArray("\x40\0\0\0PE\0\0\x4c\x01", 10);
    const QString exe = Make("Win/RF.EXE", pe32, false);
    qputenv("PATH", QFile::encodeName(root + "/nowhere"));
    EXPECT_EQ(launcher.ShellExecute(exe, "", root + "/Win", 1), 31)
        << "no wine for a Windows program";
    EXPECT_FALSE(QFile::exists(recordPath));
    EXPECT_EQ(launcher.StartedProcess(), 0);

    Make("bin/wine",
         "#!/bin/sh\nhead -c 9000 /dev/zero >&2\nfor i in $(seq 20); do echo line $i "
         ">&2; done\nexit 3\n",
         true);
    qputenv("PATH", QFile::encodeName(root + "/bin") + ":" + savedPath);
    ASSERT_EQ(launcher.ShellExecute(exe, "-dedicated x", root, 1), 42);
    const auto exit = WaitForExit();
    ASSERT_TRUE(exit);
    EXPECT_EQ(std::tuple(exit->process, exit->program, exit->status, exit->signalled,
                         exit->windows32, exit->errorTail),
              std::tuple(launcher.StartedProcess(), exe, 3, false, true,
                         QString("line 13\nline 14\nline 15\nline 16\nline 17\nline 18\nline "
                                 "19\nline 20")));
}

} // namespace
