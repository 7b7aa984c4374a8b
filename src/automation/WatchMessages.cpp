#include "automation/WatchMessages.h"

#include <QFileInfo>
#include <QStringList>

namespace {

const QString kEol = QStringLiteral("\r\n");

QString HowItEnded(const ProgramExit& exit) {
    return exit.signalled ? QStringLiteral("it was ended by signal %1").arg(exit.status)
                          : QStringLiteral("its exit status was %1").arg(exit.status);
}

// Program, status, the end of its error output and, for a 32-bit Windows program, what
// wine needs to run it.
QStringList Details(const ProgramExit& exit) {
    QStringList lines{QStringLiteral("Program: ") + exit.program,
                      QStringLiteral("Exit status: %1").arg(exit.status)};
    if (exit.signalled)
        lines.last() = QStringLiteral("Ended by signal %1").arg(exit.status);
    if (exit.errorTail.isEmpty()) {
        lines << QStringLiteral("It wrote nothing to its error output.");
    } else {
        lines << QStringLiteral("The last lines of its error output:");
        lines << exit.errorTail.split(QLatin1Char('\n'));
    }
    if (exit.windows32) {
        const QString name = QFileInfo(exit.program).fileName();
        lines << QString()
              << name + QStringLiteral(" is a 32-bit Windows program, and wine stopped at once: "
                                       "this wine cannot run 32-bit programs. Install its 32-bit "
                                       "part (on Debian: dpkg --add-architecture i386, apt-get "
                                       "update, apt-get install wine32), then press Launch.");
    }
    return lines;
}

} // namespace

MessageRequest FailedStartMessage(const ProgramExit& exit) {
    const QStringList lines =
        QStringList{QStringLiteral("The dedicated server stopped right after it started."),
                    QString()} +
        Details(exit);
    return {lines.join(kEol), QStringLiteral("Dedicated Server Error"), MsgButtons::OK,
            MsgIcon::Critical, MsgDefault::First};
}

MessageRequest RecoveryStoppedMessage(int relaunches, const ProgramExit* last, bool failedStart) {
    const QString how =
        last ? HowItEnded(*last) : QStringLiteral("its console no longer took typed messages");
    QStringList lines{QStringLiteral("The dedicated server was lost again after %1 automatic "
                                     "relaunches within 10 minutes; %2.")
                          .arg(relaunches)
                          .arg(how),
                      QStringLiteral("Server Recover will not start it again until you press "
                                     "Launch.")};
    if (last && failedStart)
        lines << QString() << Details(*last);
    return {lines.join(kEol), QStringLiteral("Server Recover"), MsgButtons::OK, MsgIcon::Critical,
            MsgDefault::First};
}

MessageRequest ConsoleMissingMessage(const QString& program, int seconds,
                                     const QString& errorTail) {
    QStringList lines{QStringLiteral("The dedicated server is running, but %1 seconds after its "
                                     "start it still shows no window titled \"Red Faction "
                                     "Dedicated Server\", so no messages can be typed into it.")
                          .arg(seconds),
                      QString(), QStringLiteral("Program: ") + program};
    if (!errorTail.isEmpty())
        lines << QStringLiteral("The last lines of its error output:")
              << errorTail.split(QLatin1Char('\n'));
    return {lines.join(kEol), QStringLiteral("Dedicated Server Error"), MsgButtons::OK,
            MsgIcon::Information, MsgDefault::First};
}
