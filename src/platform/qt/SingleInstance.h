#pragma once

#include <QLocalServer>
#include <QString>

#include <functional>

// Keeps one Hostwarden running per user. The running one holds a lock on a file in the
// user's runtime folder and listens on a local socket beside it; a later start finds
// the lock held, asks the running one to come to the front and goes no further. The
// system drops the lock of a process that dies, so a killed instance blocks nothing.
class SingleInstance {
public:
    // `comeForward` runs in the running instance each time a later start knocks.
    explicit SingleInstance(std::function<void()> comeForward);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // True when this process is now the running instance. False when another one runs;
    // it has been asked to come forward.
    bool Claim();

    // $XDG_RUNTIME_DIR/hostwarden, or a folder of this user's own under the temporary
    // folder when that variable is unset or not an absolute path.
    static QString Folder();

private:
    void Knock(const QString& socketPath);

    std::function<void()> comeForward_;
    QLocalServer server_;
    int lockFd_ = -1;
};
