#include "platform/posix/PosixProcessLauncher.h"

#include "platform/posix/NoCasePath.h"
#include "server/StartProgram.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Writes where it ran, its argv, its parent, its session and its stdin to the file
// named by $HW_RECORD, atomically, so a test sees the whole record or none.
const char* const kRecorder = R"sh(#!/bin/sh
{
  pwd -P
  echo "ppid $PPID"
  echo "sid $(cut -d' ' -f6 /proc/$$/stat)"
  echo "stdin $(readlink /proc/$$/fd/0)"
  for arg in "$0" "$@"; do printf 'arg %s\n' "$arg"; done
} > "$HW_RECORD.part" && mv "$HW_RECORD.part" "$HW_RECORD"
)sh";

struct Record {
    QString pwd;
    QString ppid;
    QString sid;
    QString stdinTarget;
    QStringList argv;
};

class PosixProcessLauncherTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(temp.isValid());
        root = QFileInfo(temp.path()).canonicalFilePath();
        recordPath = root + "/record.txt";
        savedPath = qgetenv("PATH");
        qputenv("HW_RECORD", QFile::encodeName(recordPath));
    }
    void TearDown() override {
        qputenv("PATH", savedPath);
        qunsetenv("HW_RECORD");
    }

    QString Make(const QString& relative, const QByteArray& content, bool executable) {
        const QString path = root + "/" + relative;
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner;
        if (executable)
            permissions |= QFile::ExeOwner;
        file.setPermissions(permissions);
        return path;
    }
    QString Script(const QString& relative) { return Make(relative, kRecorder, true); }

    // The started program runs on its own; wait for its record to appear.
    std::optional<Record> WaitForRecord() {
        QDeadlineTimer deadline(10000);
        while (!QFile::exists(recordPath) && !deadline.hasExpired())
            QThread::msleep(5);
        QFile file(recordPath);
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        Record record;
        const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
        record.pwd = lines.value(0);
        for (const QString& line : lines) {
            if (line.startsWith("ppid "))
                record.ppid = line.mid(5);
            else if (line.startsWith("sid "))
                record.sid = line.mid(4);
            else if (line.startsWith("stdin "))
                record.stdinTarget = line.mid(6);
            else if (line.startsWith("arg "))
                record.argv << line.mid(4);
        }
        QFile::remove(recordPath);
        return record;
    }

    QTemporaryDir temp;
    QString root;
    QString recordPath;
    QByteArray savedPath;
    PosixProcessLauncher launcher;
};

TEST_F(PosixProcessLauncherTest, StartsTheProgramDetachedWithItsArgumentsInItsFolder) {
    const QString program = Script("Game/rf.sh");
    EXPECT_EQ(launcher.ShellExecute(program, "-dedicated  My Server -port 7755", root + "/Game", 1),
              42);
    const auto record = WaitForRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->pwd, root + "/Game");
    EXPECT_EQ(record->argv, QStringList({program, "-dedicated", "My", "Server", "-port", "7755"}));
    EXPECT_EQ(record->stdinTarget, "/dev/null");
    EXPECT_NE(record->ppid, QString::number(getpid()));
    EXPECT_NE(record->sid, QString::number(getsid(0)));
    // Nothing of ours is left to reap: no zombie, no child at all.
    errno = 0;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(PosixProcessLauncherTest, FindsTheProgramAndFolderWhateverTheirCase) {
    Script("RedFaction/Data/rf.exe");
    EXPECT_EQ(launcher.ShellExecute(root + "/redfaction/DATA/RF.EXE", "-dedicated Default",
                                    root + "/REDFACTION/data", 1),
              42);
    const auto record = WaitForRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->pwd, root + "/RedFaction/Data");
    EXPECT_EQ(record->argv.value(0), root + "/RedFaction/Data/rf.exe");

    EXPECT_EQ(FindPathNoCase(root + "\\redfaction\\data\\RF.exe"),
              root + "/RedFaction/Data/rf.exe");
    EXPECT_EQ(FindEntryNoCase(root + "/RedFaction/", "DATA"), root + "/RedFaction/Data");
    EXPECT_FALSE(FindPathNoCase(root + "/RedFaction/Maps/rf.exe"));
}

TEST_F(PosixProcessLauncherTest, RunsAWindowsProgramThroughWine) {
    const QString wine = Script("bin/wine");
    const QString game = Make("Game/RF.EXE", QByteArray("MZ\x90\0\x03", 5), false);
    qputenv("PATH", QFile::encodeName(root + "/bin") + ":" + savedPath);

    EXPECT_EQ(launcher.ShellExecute(game, "-dedicated Default -lanonly", root + "/Game", 1), 42);
    const auto record = WaitForRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->argv, QStringList({wine, game, "-dedicated", "Default", "-lanonly"}));
    EXPECT_EQ(record->pwd, root + "/Game");

    qputenv("PATH", QFile::encodeName(root + "/nowhere"));
    EXPECT_EQ(launcher.ShellExecute(game, "", root + "/Game", 1), 31);
}

struct FailureRow {
    const char* what;
    const char* program; // under the temp folder
    std::int32_t result;
};

class PosixLauncherFailureTest : public PosixProcessLauncherTest,
                                 public ::testing::WithParamInterface<FailureRow> {};

TEST_P(PosixLauncherFailureTest, GivesASmallErrorCode) {
    Make("Game/readme.txt", "just text\n", false);
    Make("Game/garbage", "no program at all\n", true);
    EXPECT_EQ(launcher.ShellExecute(root + "/" + GetParam().program, "-dedicated x", root, 1),
              GetParam().result)
        << GetParam().what;
    EXPECT_FALSE(QFile::exists(recordPath));
}

INSTANTIATE_TEST_SUITE_P(Codes, PosixLauncherFailureTest,
                         ::testing::Values(FailureRow{"missing file", "Game/RF.EXE", 2},
                                           FailureRow{"missing folder", "Gone/RF.EXE", 3},
                                           FailureRow{"not executable", "Game/readme.txt", 5},
                                           FailureRow{"a folder", "Game", 5},
                                           FailureRow{"not a program format", "Game/garbage", 11}));

TEST_F(PosixProcessLauncherTest, FallsBackToTheProgramFolderOrInheritsTheCurrentOne) {
    Script("Game/rf.sh");
    EXPECT_EQ(launcher.ShellExecute(root + "/Game/rf.sh", "", root + "/Gone", 1), 42);
    auto record = WaitForRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->pwd, root + "/Game");

    // A relative program is looked up in the working directory first.
    EXPECT_EQ(launcher.ShellExecute("RF.SH", "", root + "/Game", 1), 42);
    record = WaitForRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->argv.value(0), root + "/Game/rf.sh");

    EXPECT_EQ(launcher.ShellExecute(root + "/Game/rf.sh", "", "", 1), 42);
    record = WaitForRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->pwd, QFileInfo(QDir::currentPath()).canonicalFilePath());
}

TEST_F(PosixProcessLauncherTest, WholeCommandLineFindsAPathWithBlanks) {
    const QString program = Script("My Games/Red Faction/rf.exe");
    EXPECT_EQ(
        launcher.StartCommandLine(root + "/my games/red faction/RF.EXE -dedicated My Server", 1),
        42);
    const auto record = WaitForRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->argv, QStringList({program, "-dedicated", "My", "Server"}));
    EXPECT_EQ(record->pwd, root + "/My Games/Red Faction");

    EXPECT_EQ(launcher.StartCommandLine(root + "/My Games/Nothing Here -dedicated x", 1), 2);
}

// Folder and configuration names full of shell syntax reach the program as plain text
// and make nothing else run.
TEST_F(PosixProcessLauncherTest, ShellCharactersRunNothing) {
    const QString marker = root + "/injected";
    const QString gameDir = "g;touch injected&&$(touch injected)|`touch injected`>injected x";
    const QString program = Script(gameDir + "/RF.EXE");
    const QString name =
        QStringLiteral("a;touch %1 $(touch %1) `touch %1` && touch %1 | cat > %1").arg(marker);
    const QString savedCurrent = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(root));

    QString line = root + "/" + gameDir + "/RF.EXE -dedicated " + name + " -port 7755";
    const std::int32_t result = StartProgram(launcher, line, 1);
    const auto record = WaitForRecord();
    QDir::setCurrent(savedCurrent);

    EXPECT_EQ(result, 2); // the blank in the folder name needs the whole-line start
    ASSERT_TRUE(record);
    EXPECT_EQ(record->argv.value(0), program);
    EXPECT_EQ(record->argv.mid(1).join(' '), "-dedicated " + name + " -port 7755");
    QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString found = it.next();
        EXPECT_NE(it.fileName(), "injected") << found.toStdString();
    }
}

} // namespace
