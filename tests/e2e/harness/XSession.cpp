#include "XSession.h"

#include "Artifacts.h"
#include "Wait.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace e2e {

namespace {

constexpr auto kStartTimeout = 15s;

// openbox with its defaults and nothing from the user's own configuration.
const char kOpenboxConfig[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <desktops><number>1</number></desktops>
</openbox_config>
)";

Window WindowProperty(::Display* display, Window window, Atom property) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, remaining = 0;
    unsigned char* data = nullptr;
    Window value = None;
    if (XGetWindowProperty(display, window, property, 0, 1, False, XA_WINDOW, &type, &format,
                           &count, &remaining, &data) == Success &&
        data && count == 1 && format == 32)
        value = *reinterpret_cast<Window*>(data);
    if (data)
        XFree(data);
    return value;
}

int IgnoreError(::Display*, XErrorEvent*) {
    return 0;
}

// True once a window manager has announced itself on the root window.
bool IsManaged(const QString& displayName) {
    ::Display* display = XOpenDisplay(displayName.toLocal8Bit().constData());
    if (!display)
        return false;
    XErrorHandler previous = XSetErrorHandler(IgnoreError);
    const Atom check = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False);
    const Window wm = WindowProperty(display, DefaultRootWindow(display), check);
    const bool managed = wm != None && WindowProperty(display, wm, check) == wm;
    XSync(display, False);
    XSetErrorHandler(previous);
    XCloseDisplay(display);
    return managed;
}

bool ListsClient(::Display* display, Window window) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, remaining = 0;
    unsigned char* data = nullptr;
    bool found = false;
    const Atom list = XInternAtom(display, "_NET_CLIENT_LIST", False);
    if (XGetWindowProperty(display, DefaultRootWindow(display), list, 0, 4096, False, XA_WINDOW,
                           &type, &format, &count, &remaining, &data) == Success &&
        data && format == 32)
        for (unsigned long i = 0; i < count; ++i)
            found = found || reinterpret_cast<Window*>(data)[i] == window;
    if (data)
        XFree(data);
    return found;
}

// openbox announces itself before it has finished starting, and a window mapped in that
// gap stays unmanaged. A probe window that it takes into its client list shows it is ready.
bool ManagesNewWindows(const QString& displayName) {
    ::Display* display = XOpenDisplay(displayName.toLocal8Bit().constData());
    if (!display)
        return false;
    bool managed = false;
    for (int attempt = 0; attempt < 10 && !managed; ++attempt) {
        const Window probe =
            XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 10, 10, 0, 0, 0);
        XMapWindow(display, probe);
        XSync(display, False);
        managed = WaitUntil([&] { return ListsClient(display, probe); }, 1s);
        XDestroyWindow(display, probe);
        XSync(display, False);
    }
    XCloseDisplay(display);
    return managed;
}

} // namespace

XSession::XSession(WindowManager wm) {
    if (!dir_.isValid())
        throw std::runtime_error("cannot create a temporary folder for the X session");
    StartServer();
    if (wm == WindowManager::Openbox)
        StartOpenbox();
}

XSession::~XSession() {
    windowManager_.Stop();
    server_.Stop();
    if (displaySet_) {
        if (hadDisplay_)
            setenv("DISPLAY", previousDisplay_.constData(), 1);
        else
            unsetenv("DISPLAY");
    }
}

void XSession::StartServer() {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        throw std::runtime_error("pipe2 failed");
    // Xvfb writes the display number it picked to this descriptor once it accepts clients.
    fcntl(fds[1], F_SETFD, 0);
    ProcessOptions options;
    options.stdoutFile = ArtifactPath("xvfb.log");
    options.stderrFile = options.stdoutFile;
    try {
        server_ = Process("Xvfb",
                          {"-displayfd", QString::number(fds[1]), "-screen", "0", "1280x1024x24",
                           "-nolisten", "tcp", "-noreset"},
                          options);
    } catch (...) {
        close(fds[0]);
        close(fds[1]);
        throw;
    }
    close(fds[1]);

    QByteArray number;
    pollfd p{fds[0], POLLIN, 0};
    const auto deadline = std::chrono::steady_clock::now() + kStartTimeout;
    while (!number.endsWith('\n') && std::chrono::steady_clock::now() < deadline) {
        if (poll(&p, 1, 100) <= 0)
            continue;
        char buffer[32];
        const ssize_t n = read(fds[0], buffer, sizeof buffer);
        if (n <= 0)
            break;
        number.append(buffer, n);
    }
    close(fds[0]);
    if (!number.endsWith('\n'))
        throw std::runtime_error("Xvfb did not report a display (see " +
                                 ArtifactPath("xvfb.log").toStdString() + ")");
    display_ = ":" + QString::fromLatin1(number.trimmed());
}

void XSession::StartOpenbox() {
    const QString config = dir_.filePath("openbox-rc.xml");
    QFile file(config);
    if (!file.open(QIODevice::WriteOnly) || file.write(kOpenboxConfig) < 0)
        throw std::runtime_error("cannot write the openbox configuration");
    file.close();
    ProcessOptions options;
    options.env = Environment();
    options.env << "HOME=" + dir_.path() << "XDG_CONFIG_HOME=" + dir_.path()
                << "XDG_CONFIG_DIRS=" + dir_.path();
    options.stdoutFile = ArtifactPath("openbox.log");
    options.stderrFile = options.stdoutFile;
    windowManager_ = Process("openbox", {"--config-file", config}, options);
    if (!WaitUntil([&] { return IsManaged(display_) || !windowManager_.IsRunning(); },
                   kStartTimeout) ||
        !windowManager_.IsRunning() || !ManagesNewWindows(display_))
        throw std::runtime_error("openbox did not start managing " + display_.toStdString());
}

void XSession::UseInThisProcess() {
    if (!displaySet_) {
        const char* previous = getenv("DISPLAY");
        hadDisplay_ = previous != nullptr;
        previousDisplay_ = previous ? QByteArray(previous) : QByteArray();
        displaySet_ = true;
    }
    setenv("DISPLAY", display_.toLocal8Bit().constData(), 1);
}

void XSession::StopWindowManager() {
    windowManager_.Stop();
    // openbox removes its announcement on the way out; wait until it is gone.
    WaitUntil([&] { return !IsManaged(display_); }, 5s);
}

void XSession::StopServer() {
    windowManager_.Stop();
    server_.Stop();
}

} // namespace e2e
