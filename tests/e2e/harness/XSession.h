#pragma once

#include "Process.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdlib>

namespace e2e {

// A private X server (Xvfb, 1280x1024x24, no TCP) on a free display, with openbox
// managing it unless asked otherwise. Child processes get Environment(); UseInThisProcess()
// points this process's own DISPLAY at it. The destructor stops everything it started.
// Throws std::runtime_error when the server or the window manager does not come up.
class XSession {
public:
    enum class WindowManager { Openbox, Absent };

    explicit XSession(WindowManager wm = WindowManager::Openbox);
    XSession(const XSession&) = delete;
    XSession& operator=(const XSession&) = delete;

    const QString& Display() const { return display_; } // ":N"
    QStringList Environment() const { return {"DISPLAY=" + display_}; }
    void UseInThisProcess() const { setenv("DISPLAY", display_.toLocal8Bit().constData(), 1); }
    // Stops the X server, as a lost connection would show it to its clients.
    void StopServer() {
        windowManager_.Stop();
        server_.Stop();
    }

private:
    QTemporaryDir dir_;
    QString display_;
    Process server_;
    Process windowManager_; // declared after the server, so it is stopped first
};

// Where tests leave screenshots and logs; created on first use.
QString ArtifactPath(const QString& fileName);

} // namespace e2e
