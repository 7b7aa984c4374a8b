#pragma once

#include "Process.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace e2e {

// A private X server (Xvfb, 1280x1024x24, no TCP) on a free display, with openbox
// managing it unless asked otherwise. Nothing is exported globally: child processes get
// Environment(), and UseInThisProcess() points this process's own DISPLAY at it (restored
// on destruction). The destructor stops everything the session started.
// Throws std::runtime_error when the server or the window manager does not come up.
class XSession {
public:
    enum class WindowManager { Openbox, Absent };

    explicit XSession(WindowManager wm = WindowManager::Openbox);
    ~XSession();
    XSession(const XSession&) = delete;
    XSession& operator=(const XSession&) = delete;

    const QString& Display() const { return display_; } // ":N"
    QStringList Environment() const { return {"DISPLAY=" + display_}; }
    void UseInThisProcess();

    // Stops the window manager (to exercise the no-manager paths) or the whole server.
    void StopWindowManager();
    void StopServer();

private:
    void StartServer();
    void StartOpenbox();

    QTemporaryDir dir_;
    QString display_;
    Process server_;
    Process windowManager_;
    bool displaySet_ = false;
    bool hadDisplay_ = false;
    QByteArray previousDisplay_;
};

} // namespace e2e
