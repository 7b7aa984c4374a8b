#include "Desktop.h"

#include "XSession.h"

#include <QRegularExpression>

namespace e2e {

namespace {

QString Hex(WindowId window) {
    return "0x" + QString::number(window, 16);
}

std::optional<WindowId> ParseId(const QString& text) {
    bool ok = false;
    const QString t = text.trimmed();
    const WindowId id = t.startsWith("0x") ? t.mid(2).toULong(&ok, 16) : t.toULong(&ok, 10);
    return ok && id != 0 ? std::optional<WindowId>(id) : std::nullopt;
}

} // namespace

std::vector<WindowId> Desktop::Windows() const {
    std::vector<WindowId> ids;
    const ToolResult list = Run("xprop", {"-root", "-notype", "_NET_CLIENT_LIST_STACKING"});
    static const QRegularExpression hexId("0x[0-9a-fA-F]+");
    if (list.exitCode == 0 && list.out.contains("#"))
        for (const auto& m : hexId.globalMatch(list.out.section('#', 1)))
            if (auto id = ParseId(m.captured()))
                ids.insert(ids.begin(), *id);
    return ids;
}

QStringList Desktop::WindowTitles() const {
    QStringList titles;
    for (WindowId id : Windows())
        titles << WindowTitle(id);
    return titles;
}

std::optional<WindowId> Desktop::FindWindow(const QString& title, TitleMatch match) const {
    for (WindowId id : Windows()) {
        const QString t = WindowTitle(id);
        if (match == TitleMatch::Exact ? t == title : t.contains(title, Qt::CaseInsensitive))
            return id;
    }
    return std::nullopt;
}

std::optional<WindowId> Desktop::WaitForWindow(const QString& title, TitleMatch match,
                                               std::chrono::milliseconds timeout) const {
    std::optional<WindowId> found;
    WaitUntil([&] { return (found = FindWindow(title, match)).has_value(); }, timeout, 50ms);
    return found;
}

bool Desktop::WaitForWindowGone(WindowId window, std::chrono::milliseconds timeout) const {
    return WaitUntil([&] { return !WindowExists(window); }, timeout, 50ms);
}

bool Desktop::WindowExists(WindowId window) const {
    return Run("xwininfo", {"-id", Hex(window)}).exitCode == 0;
}

QString Desktop::WindowTitle(WindowId window) const {
    // _NET_WM_NAME (UTF-8) where the window has one, WM_NAME otherwise.
    const QString name = Run("xdotool", {"getwindowname", Hex(window)}).out;
    return name.endsWith('\n') ? name.chopped(1) : name;
}

bool Desktop::Click(WindowId window, QPoint position) const {
    // "mousemove --sync" waits for the pointer to move; when it already rests on the
    // spot it would wait out the tool's whole time limit.
    Run("xdotool", {"mousemove", "0", "0"});
    return Run("xdotool", {"mousemove", "--sync", "--window", Hex(window),
                           QString::number(position.x()), QString::number(position.y()), "click",
                           "1"})
               .exitCode == 0;
}

bool Desktop::TypeText(const QString& text) const {
    return Run("xdotool", {"type", "--delay", "30", "--", text}).exitCode == 0;
}

bool Desktop::PressKey(const QString& keys) const {
    return Run("xdotool", {"key", "--", keys}).exitCode == 0;
}

bool Desktop::Activate(WindowId window) const {
    return Run("xdotool", {"windowactivate", "--sync", Hex(window)}).exitCode == 0;
}

std::optional<WindowId> Desktop::ActiveWindow() const {
    const ToolResult r = Run("xdotool", {"getactivewindow"});
    return r.exitCode == 0 ? ParseId(r.out) : std::nullopt;
}

std::optional<WindowId> Desktop::FocusedWindow() const {
    const ToolResult r = Run("xdotool", {"getwindowfocus", "-f"});
    return r.exitCode == 0 ? ParseId(r.out) : std::nullopt;
}

QString Desktop::Screenshot(const QString& name, WindowId window) const {
    const QString path = ArtifactPath(name + ".png");
    const ToolResult r =
        Run("import", {"-window", window ? Hex(window) : QString("root"), "png:" + path});
    return r.exitCode == 0 ? path : QString();
}

} // namespace e2e
