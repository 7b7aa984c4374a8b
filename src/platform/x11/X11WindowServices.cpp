#include "platform/x11/X11WindowServices.h"

#include "platform/x11/XConnectionLoss.h"

#include <QCoreApplication>
#include <QFile>
#include <QList>

#include <cstdio>

#include <unistd.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

const char* const kAtomNames[] = {
    "_NET_CLIENT_LIST_STACKING",
    "_NET_WM_NAME",
    "UTF8_STRING",
    "WM_STATE",
    "_NET_WM_PID",
    "WM_CLIENT_MACHINE",
    "_NET_WM_STATE",
    "_NET_WM_STATE_MODAL",
    "WM_PROTOCOLS",
    "WM_DELETE_WINDOW",
    "_NET_CLOSE_WINDOW",
    "_NET_ACTIVE_WINDOW",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_WM_DESKTOP",
    "_NET_CURRENT_DESKTOP",
};

// Tells the window manager the request comes from a pager-like tool acting for the
// user, so it is obeyed rather than treated as focus stealing.
constexpr long kSourceIndicationPager = 2;

// A window shown on every desktop.
constexpr unsigned long kAllDesktops = 0xFFFFFFFF;

// Windows vanish between any two requests; an error about one must not end the program.
// While a trap is alive protocol errors are swallowed; the failing call reports
// failure through its own return value.
int IgnoreError(Display*, XErrorEvent*) {
    return 0;
}

class ErrorTrap {
public:
    explicit ErrorTrap(Display* display) : display_(display) {
        previous_ = XSetErrorHandler(IgnoreError);
    }
    ~ErrorTrap() {
        XSync(display_, False);
        XSetErrorHandler(previous_);
    }
    ErrorTrap(const ErrorTrap&) = delete;
    ErrorTrap& operator=(const ErrorTrap&) = delete;

private:
    Display* display_;
    XErrorHandler previous_;
};

// The parent and the session of a process, from /proc; false when it is gone.
bool ReadProcess(long pid, long& parent, long& session) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray stat = file.readAll();
    // "pid (name) state ppid pgrp session ..."; the name may hold blanks and parentheses.
    const qsizetype close = stat.lastIndexOf(')');
    if (close < 0)
        return false;
    const QList<QByteArray> fields = stat.mid(close + 2).split(' ');
    if (fields.size() < 4)
        return false;
    parent = fields[1].toLong();
    session = fields[3].toLong();
    return true;
}

QByteArray HostName() {
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) != 0)
        return {};
    return QByteArray(name);
}

} // namespace

X11WindowServices::X11WindowServices() {
    Open(nullptr);
}

X11WindowServices::X11WindowServices(const char* displayName) {
    Open(displayName);
}

X11WindowServices::~X11WindowServices() {
    // A lost connection is left as it is: closing it would only report the loss again.
    if (!display_)
        return;
    ForgetConnection(display_);
    if (!lost_)
        XCloseDisplay(display_);
}

void X11WindowServices::Open(const char* displayName) {
    display_ = XOpenDisplay(displayName);
    if (!display_) {
        std::fprintf(stderr,
                     "Hostwarden: cannot open the X display \"%s\"; server windows "
                     "cannot be found or closed.\n",
                     XDisplayName(displayName));
        return;
    }
    SurviveConnectionLoss(display_, &X11WindowServices::ConnectionLost, this);
    root_ = DefaultRootWindow(display_);
    XInternAtoms(display_, const_cast<char**>(kAtomNames), AtomCount, False, atoms_);
    hostName_ = HostName();
}

void X11WindowServices::ConnectionLost(Display* display, void* self) {
    auto* services = static_cast<X11WindowServices*>(self);
    if (!services->lost_)
        std::fprintf(stderr,
                     "Hostwarden: lost the connection to the X display \"%s\"; server "
                     "windows can no longer be found.\n",
                     DisplayString(display));
    services->lost_ = true;
}

QByteArray X11WindowServices::ReadProperty(unsigned long window, unsigned long property,
                                           unsigned long type, int format,
                                           unsigned long* actualType) {
    Atom gotType = None;
    int gotFormat = 0;
    unsigned long count = 0, remaining = 0;
    unsigned char* data = nullptr;
    // Titles and lists are small; 64 K 32-bit units is far beyond any real one.
    const int status = XGetWindowProperty(display_, window, property, 0, 65536, False, type,
                                          &gotType, &gotFormat, &count, &remaining, &data);
    QByteArray bytes;
    if (status == Success && data && gotType != None && (format == 0 || gotFormat == format)) {
        // 32-bit items arrive as longs, whatever the size of a long.
        const std::size_t itemSize = gotFormat == 32 ? sizeof(long) : std::size_t(gotFormat / 8);
        bytes = QByteArray(reinterpret_cast<const char*>(data), qsizetype(count * itemSize));
    }
    if (data)
        XFree(data);
    if (actualType)
        *actualType = gotType;
    return bytes;
}

std::vector<unsigned long> X11WindowServices::ReadWindowList(unsigned long window, Atom_ property) {
    const QByteArray bytes = ReadProperty(window, atoms_[property], XA_WINDOW, 32);
    std::vector<unsigned long> ids(std::size_t(bytes.size()) / sizeof(long));
    for (std::size_t i = 0; i < ids.size(); ++i)
        ids[i] = reinterpret_cast<const unsigned long*>(bytes.constData())[i];
    return ids;
}

std::vector<WindowHandle> X11WindowServices::ClientWindows() {
    if (!IsConnected())
        return {};
    ErrorTrap trap(display_);
    unsigned long type = None;
    const QByteArray bytes =
        ReadProperty(root_, atoms_[NetClientListStacking], XA_WINDOW, 32, &type);
    if (type == None || !HasWindowManager())
        return ClientsFromTree();
    const auto* ids = reinterpret_cast<const unsigned long*>(bytes.constData());
    std::vector<WindowHandle> clients;
    for (qsizetype i = bytes.size() / qsizetype(sizeof(long)); i-- > 0;)
        clients.push_back(WindowHandle(ids[i]));
    return clients;
}

// Without a window manager that keeps the client list: the root's children, top first;
// under each one the window that carries WM_STATE, or the child itself when it is a
// mapped ordinary window (no window manager sets WM_STATE then).
std::vector<WindowHandle> X11WindowServices::ClientsFromTree() {
    std::vector<WindowHandle> clients;
    Window rootReturn = None, parent = None;
    Window* children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree(display_, root_, &rootReturn, &parent, &children, &count))
        return clients;
    for (unsigned int i = count; i-- > 0;) {
        unsigned long client = FindClient(children[i], 0);
        if (!client) {
            XWindowAttributes attributes;
            if (XGetWindowAttributes(display_, children[i], &attributes) &&
                attributes.map_state == IsViewable && !attributes.override_redirect &&
                attributes.c_class == InputOutput)
                client = children[i];
        }
        if (client)
            clients.push_back(WindowHandle(client));
    }
    if (children)
        XFree(children);
    return clients;
}

unsigned long X11WindowServices::FindClient(unsigned long window, int depth) {
    unsigned long type = None;
    ReadProperty(window, atoms_[WmState], AnyPropertyType, 0, &type);
    if (type != None)
        return window;
    if (depth >= 3) // client windows sit at most a few frames below the root
        return 0;
    Window rootReturn = None, parent = None;
    Window* children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree(display_, window, &rootReturn, &parent, &children, &count))
        return 0;
    unsigned long found = 0;
    for (unsigned int i = count; i-- > 0 && !found;)
        found = FindClient(children[i], depth + 1);
    if (children)
        XFree(children);
    return found;
}

bool X11WindowServices::HasWindowManager() {
    const std::vector<unsigned long> check = ReadWindowList(root_, NetSupportingWmCheck);
    if (check.empty())
        return false;
    // A manager that died leaves the property behind, pointing at a window that is gone
    // or no longer points back at itself.
    const std::vector<unsigned long> self = ReadWindowList(check[0], NetSupportingWmCheck);
    return !self.empty() && self[0] == check[0];
}

WindowHandle X11WindowServices::GetWindow(WindowHandle window, WindowRelation relation) {
    if (!IsConnected())
        return 0;
    switch (relation) {
    case WindowRelation::First:
        walk_ = ClientWindows();
        return walk_.empty() ? 0 : walk_.front();
    case WindowRelation::Next:
        for (std::size_t i = 0; i + 1 < walk_.size(); ++i)
            if (walk_[i] == window)
                return walk_[i + 1];
        return 0;
    case WindowRelation::Owner: {
        if (window == mainWindow_)
            return 0;
        ErrorTrap trap(display_);
        if (IsOwnProcess(window))
            return mainWindow_;
        const unsigned long owner = TransientFor(window);
        if (owner && (owner == mainWindow_ || IsOwnProcess(owner)))
            return mainWindow_;
        return 0;
    }
    }
    return 0;
}

long X11WindowServices::ProcessOf(unsigned long window) {
    const QByteArray pid = ReadProperty(window, atoms_[NetWmPid], XA_CARDINAL, 32);
    if (pid.size() < qsizetype(sizeof(long)))
        return 0;
    // The same process id on another machine is another process.
    QByteArray machine = ReadProperty(window, atoms_[WmClientMachine], AnyPropertyType, 8);
    while (machine.endsWith('\0'))
        machine.chop(1);
    if (!machine.isEmpty() && machine != hostName_)
        return 0;
    return *reinterpret_cast<const long*>(pid.constData());
}

bool X11WindowServices::IsOwnProcess(unsigned long window) {
    return ProcessOf(window) == long(getpid());
}

// The launched program may have started the process that shows the window (wine does);
// a process that left its parent still keeps the program's session.
bool X11WindowServices::InProcessTree(WindowHandle window, std::int64_t process) {
    if (!IsConnected() || window == 0 || process <= 0)
        return false;
    long pid = 0;
    {
        ErrorTrap trap(display_);
        pid = ProcessOf(window);
    }
    for (int depth = 0; pid > 1 && depth < 64; ++depth) {
        if (pid == process)
            return true;
        long parent = 0, session = 0;
        if (!ReadProcess(pid, parent, session))
            return false;
        if (session == process)
            return true;
        pid = parent;
    }
    return false;
}

unsigned long X11WindowServices::TransientFor(unsigned long window) {
    Window owner = None;
    if (!XGetTransientForHint(display_, window, &owner))
        return 0;
    return owner == root_ ? 0 : owner;
}

bool X11WindowServices::IsWindow(WindowHandle window) {
    if (!IsConnected() || window == 0)
        return false;
    ErrorTrap trap(display_);
    XWindowAttributes attributes;
    return XGetWindowAttributes(display_, window, &attributes) != 0;
}

QString X11WindowServices::GetWindowText(WindowHandle window) {
    if (!IsConnected() || window == 0)
        return {};
    ErrorTrap trap(display_);
    QByteArray name = ReadProperty(window, atoms_[NetWmName], atoms_[Utf8String], 8);
    if (!name.isEmpty())
        return QString::fromUtf8(name);
    XTextProperty text{};
    if (!XGetWMName(display_, window, &text) || !text.value)
        return {};
    QString title;
    if (text.encoding == XA_STRING) {
        title = QString::fromLatin1(reinterpret_cast<const char*>(text.value), text.nitems);
    } else if (text.encoding == atoms_[Utf8String]) {
        title = QString::fromUtf8(reinterpret_cast<const char*>(text.value), text.nitems);
    } else {
        char** list = nullptr;
        int count = 0;
        if (Xutf8TextPropertyToTextList(display_, &text, &list, &count) >= Success && list) {
            if (count > 0)
                title = QString::fromUtf8(list[0]);
            XFreeStringList(list);
        }
    }
    XFree(text.value);
    // A title may carry a trailing terminator; it is not part of the text.
    while (title.endsWith(QChar(0)))
        title.chop(1);
    return title;
}

// A window whose modal dialog is open takes no input, as a disabled window would.
std::uint32_t X11WindowServices::GetStyle(WindowHandle window) {
    if (!IsConnected() || window == 0)
        return 0;
    const std::vector<WindowHandle> clients = ClientWindows();
    ErrorTrap trap(display_);
    for (WindowHandle client : clients) {
        if (client == window || TransientFor(client) != window)
            continue;
        const QByteArray state = ReadProperty(client, atoms_[NetWmState], XA_ATOM, 32);
        const auto* atoms = reinterpret_cast<const unsigned long*>(state.constData());
        for (std::size_t i = 0; i < std::size_t(state.size()) / sizeof(long); ++i)
            if (atoms[i] == atoms_[NetWmStateModal])
                return WS_DISABLED;
    }
    return 0;
}

void X11WindowServices::SendToRoot(unsigned long window, Atom_ type, long l0, long l1) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = atoms_[type];
    event.xclient.format = 32;
    event.xclient.data.l[0] = l0;
    event.xclient.data.l[1] = l1;
    XSendEvent(display_, root_, False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
}

// Cancel-mode has no X counterpart: nothing holds a pointer grab for another program's
// window, so there is nothing to cancel. Close is the polite close request.
void X11WindowServices::PostMessage(WindowHandle window, std::uint32_t message) {
    if (!IsConnected() || window == 0 || message != WM_CLOSE)
        return;
    ErrorTrap trap(display_);
    Atom* protocols = nullptr;
    int count = 0;
    bool deletable = false;
    if (XGetWMProtocols(display_, window, &protocols, &count)) {
        for (int i = 0; i < count; ++i)
            deletable = deletable || protocols[i] == atoms_[WmDeleteWindow];
        XFree(protocols);
    }
    if (deletable) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = atoms_[WmProtocols];
        event.xclient.format = 32;
        event.xclient.data.l[0] = long(atoms_[WmDeleteWindow]);
        event.xclient.data.l[1] = CurrentTime;
        XSendEvent(display_, window, False, NoEventMask, &event);
    } else {
        SendToRoot(window, NetCloseWindow, CurrentTime, kSourceIndicationPager);
    }
    XFlush(display_);
}

void X11WindowServices::ProcessPendingEvents() {
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
}

bool X11WindowServices::HasFocus(WindowHandle window) {
    if (!IsConnected() || window == 0)
        return false;
    ErrorTrap trap(display_);
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display_, &focus, &revert);
    // The focus may sit on a child of the client window (a toolkit's inner widget).
    for (int depth = 0; focus != None && focus != PointerRoot && depth < 32; ++depth) {
        if (focus == window)
            return true;
        if (focus == root_)
            return false;
        Window rootReturn = None, parent = None;
        Window* children = nullptr;
        unsigned int count = 0;
        if (!XQueryTree(display_, focus, &rootReturn, &parent, &children, &count))
            return false;
        if (children)
            XFree(children);
        focus = parent;
    }
    return false;
}

// A window on another desktop is brought to the operator's, as a pager would, rather
// than switching the operator away from what they look at.
void X11WindowServices::ActivateWindow(WindowHandle window) {
    if (!IsConnected() || window == 0)
        return;
    ErrorTrap trap(display_);
    if (HasWindowManager()) {
        const QByteArray current = ReadProperty(root_, atoms_[NetCurrentDesktop], XA_CARDINAL, 32);
        const QByteArray own = ReadProperty(window, atoms_[NetWmDesktop], XA_CARDINAL, 32);
        if (current.size() >= qsizetype(sizeof(long)) && own.size() >= qsizetype(sizeof(long))) {
            const auto here = *reinterpret_cast<const unsigned long*>(current.constData());
            const auto there = *reinterpret_cast<const unsigned long*>(own.constData());
            if (there != kAllDesktops && there != here)
                SendToRoot(window, NetWmDesktop, long(here), kSourceIndicationPager);
        }
        SendToRoot(window, NetActiveWindow, kSourceIndicationPager, CurrentTime);
    } else {
        XRaiseWindow(display_, window);
        XSetInputFocus(display_, window, RevertToParent, CurrentTime);
    }
    XSync(display_, False);
}
