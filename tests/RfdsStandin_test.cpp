#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#ifdef STANDIN_BIN

namespace {

QByteArray WaitForContent(const QString& path, const QByteArray& needle) {
    QDeadlineTimer deadline(20000);
    for (;;) {
        QFile file(path);
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        if (content.contains(needle) || deadline.hasExpired())
            return content;
        QThread::msleep(10);
    }
}

// The stand-in shows its usage without a display, and records its start and its command line
// in the game directory it runs in.
TEST(RfdsStandinTest, RecordsItsCommandLineInTheGameDirectory) {
    QProcess help;
    help.start(STANDIN_BIN, {"--help"});
    ASSERT_TRUE(help.waitForFinished(20000));
    EXPECT_EQ(help.exitCode(), 0);
    EXPECT_TRUE(help.readAllStandardOutput().startsWith("Usage: RF.EXE -dedicated"));

    QTemporaryDir game;
    QFile options(game.filePath("dedicated_server.txt"));
    ASSERT_TRUE(options.open(QIODevice::WriteOnly));
    options.write("#Dedicated Server Options\r\n$Name:           \"My Server\"\r\n");
    options.close();
    QProcess standin;
    standin.setWorkingDirectory(game.path());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    standin.setProcessEnvironment(env);
    const QStringList arguments = {"-dedicated", "My", "Server", "-port", "7755", "$(x)"};
    standin.start(STANDIN_BIN, arguments);
    ASSERT_TRUE(standin.waitForStarted(20000));

    EXPECT_EQ(WaitForContent(game.filePath("events.txt"), "started"),
              "started pid " + QByteArray::number(standin.processId()) + "\n");
    EXPECT_EQ(WaitForContent(game.filePath("commandline.txt"), "$(x)"),
              QByteArray(STANDIN_BIN) + "\n" + arguments.join('\n').toUtf8() + "\n");
    standin.terminate();
    EXPECT_TRUE(standin.waitForFinished(20000));
}

} // namespace

#endif
