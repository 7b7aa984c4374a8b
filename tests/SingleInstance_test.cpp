#include "platform/qt/SingleInstance.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

// One instance runs per runtime folder. A killed one leaves its lock file and socket behind,
// yet the next start runs; a start after that brings it forward and does not run.
TEST(SingleInstance, OneRunsALaterStartBringsItForwardAKilledOneBlocksNothing) {
    QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        SingleInstance killed([] {});
        if (killed.Claim() && ::write(ready[1], "", 1) == 1)
            ::pause();
        ::_exit(3);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_FALSE(SingleInstance([] {}).Claim());
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);

    int forward = 0;
    SingleInstance first([&] { ++forward; });
    ASSERT_TRUE(first.Claim());
    EXPECT_FALSE(SingleInstance([] {}).Claim());
    for (QDeadlineTimer deadline(5000); forward == 0 && !deadline.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_EQ(forward, 1);
    qunsetenv("XDG_RUNTIME_DIR");
}
