#include "XSession.h"

#include "Desktop.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <X11/Xlib.h>

namespace e2e {

QString ArtifactPath(const QString& fileName) {
    QDir().mkpath(QStringLiteral(E2E_ARTIFACTS));
    return QDir(QStringLiteral(E2E_ARTIFACTS)).filePath(fileName);
}

namespace {

// openbox with its defaults and nothing from the user's own configuration.
const char kOpenboxConfig[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <desktops><number>1</number></desktops>
</openbox_config>
)";

// openbox announces itself before it has finished starting, and a window mapped in that
// gap stays unmanaged. A probe window that it takes into its client list shows it is ready.
bool ManagesNewWindows(const QString& displayName, Process& windowManager) {
    ::Display* display = XOpenDisplay(displayName.toLocal8Bit().constData());
    if (!display)
        return false;
    bool managed = false;
    const auto deadline = std::chrono::steady_clock::now() + 15s;
    while (!managed && windowManager.IsRunning() && std::chrono::steady_clock::now() < deadline) {
        const Window probe =
            XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 10, 10, 0, 0, 0);
        XMapWindow(display, probe);
        XSync(display, False);
        managed = WaitUntil(
            [&] { return std::ranges::count(Desktop(displayName).Windows(), probe) == 1; }, 1s);
        XDestroyWindow(display, probe);
        XSync(display, False);
    }
    XCloseDisplay(display);
    return managed;
}

} // namespace

XSession::XSession(WindowManager wm) {
    int fds[2];
    if (!dir_.isValid() || pipe2(fds, O_CLOEXEC) != 0)
        throw std::runtime_error("cannot prepare the X session");
    // Xvfb writes the display number it picked to this descriptor once it accepts clients.
    fcntl(fds[1], F_SETFD, 0);
    try {
        server_ = Process("Xvfb",
                          {"-displayfd", QString::number(fds[1]), "-screen", "0", "1280x1024x24",
                           "-nolisten", "tcp", "-noreset"},
                          {{}, {}, ArtifactPath("xvfb.log")});
    } catch (...) {
        close(fds[0]);
        close(fds[1]);
        throw;
    }
    close(fds[1]);
    QByteArray number;
    pollfd p{fds[0], POLLIN, 0};
    const auto deadline = std::chrono::steady_clock::now() + 15s;
    while (!number.endsWith('\n') && std::chrono::steady_clock::now() < deadline) {
        char buffer[32];
        ssize_t n = 1;
        if (poll(&p, 1, 100) > 0 && (n = read(fds[0], buffer, sizeof buffer)) > 0)
            number.append(buffer, n);
        if (n <= 0)
            break;
    }
    close(fds[0]);
    if (!number.endsWith('\n'))
        throw std::runtime_error("Xvfb did not report a display (see xvfb.log)");
    display_ = ":" + QString::fromLatin1(number.trimmed());
    if (wm == WindowManager::Absent)
        return;

    QFile config(dir_.filePath("openbox-rc.xml"));
    if (!config.open(QIODevice::WriteOnly) || config.write(kOpenboxConfig) < 0)
        throw std::runtime_error("cannot write the openbox configuration");
    config.close();
    const QString home = dir_.path();
    windowManager_ = Process("openbox", {"--config-file", config.fileName()},
                             {Environment() << "HOME=" + home << "XDG_CONFIG_HOME=" + home
                                            << "XDG_CONFIG_DIRS=" + home,
                              {}, ArtifactPath("openbox.log")});
    if (!ManagesNewWindows(display_, windowManager_))
        throw std::runtime_error("openbox did not start managing " + display_.toStdString());
}

} // namespace e2e
