#include "platform/qt/SingleInstance.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

SingleInstance::SingleInstance(std::function<void()> comeForward)
    : comeForward_(std::move(comeForward)) {}

SingleInstance::~SingleInstance() {
    server_.close();
    if (lockFd_ >= 0)
        ::close(lockFd_);
}

QString SingleInstance::Folder() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QDir::isAbsolutePath(runtime))
        return runtime + QStringLiteral("/hostwarden");
    return QDir::tempPath() + QStringLiteral("/hostwarden-%1").arg(::getuid());
}

bool SingleInstance::Claim() {
    const QString folder = Folder();
    ::mkdir(QFile::encodeName(folder).constData(), 0700);
    const QString socketPath = folder + QStringLiteral("/socket");
    lockFd_ = ::open(QFile::encodeName(folder + QStringLiteral("/lock")).constData(),
                     O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    // Without a usable runtime folder there is nothing to coordinate through: run.
    if (lockFd_ < 0)
        return true;
    if (::flock(lockFd_, LOCK_EX | LOCK_NB) != 0) {
        const bool held = errno == EWOULDBLOCK;
        ::close(lockFd_);
        lockFd_ = -1;
        if (!held)
            return true;
        Knock(socketPath);
        return false;
    }
    // The lock is ours, so a socket file left there belongs to a dead instance.
    QLocalServer::removeServer(socketPath);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server_, &QLocalServer::newConnection, [this] {
        while (QLocalSocket* knock = server_.nextPendingConnection()) {
            knock->disconnectFromServer();
            knock->deleteLater();
            comeForward_();
        }
    });
    server_.listen(socketPath);
    return true;
}

void SingleInstance::Knock(const QString& socketPath) {
    // The running instance may have taken the lock a moment ago and not listen yet.
    const QDeadlineTimer deadline(3000);
    while (!deadline.hasExpired()) {
        QLocalSocket socket;
        socket.connectToServer(socketPath);
        if (socket.waitForConnected(500)) {
            socket.write("forward\n");
            socket.waitForBytesWritten(500);
            socket.disconnectFromServer();
            return;
        }
        QThread::msleep(50);
    }
}
