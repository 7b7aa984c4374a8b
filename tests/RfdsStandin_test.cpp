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
        if (file.open(QIODevice::ReadOnly)) {
            const QByteArray content = file.readAll();
            if (content.contains(needle) || deadline.hasExpired())
                return content;
        } else if (deadline.hasExpired()) {
            return {};
        }
        QThread::msleep(10);
    }
}

TEST(RfdsStandinTest, HelpNeedsNoDisplay) {
    QProcess standin;
    standin.start(STANDIN_BIN, {"--help"});
    ASSERT_TRUE(standin.waitForFinished(20000));
    EXPECT_EQ(standin.exitCode(), 0);
    EXPECT_TRUE(standin.readAllStandardOutput().startsWith("Usage: RF.EXE -dedicated"));
}

TEST(RfdsStandinTest, RecordsItsCommandLineInTheGameDirectory) {
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

    const QByteArray events = WaitForContent(game.filePath("events.txt"), "started");
    EXPECT_EQ(events, "started pid " + QByteArray::number(standin.processId()) + "\n");
    const QByteArray commandLine = WaitForContent(game.filePath("commandline.txt"), "$(x)");
    EXPECT_EQ(commandLine, QByteArray(STANDIN_BIN) + "\n" + arguments.join('\n').toUtf8() + "\n");

    standin.terminate();
    EXPECT_TRUE(standin.waitForFinished(20000));
}

} // namespace

#endif
