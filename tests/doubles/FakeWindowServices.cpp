#include "FakeWindowServices.h"

WindowHandle FakeWindowServices::Add(const QString& title, WindowHandle owner,
                                     std::uint32_t style) {
    windows.append({next_, title, owner, style});
    return next_++;
}

void FakeWindowServices::Remove(WindowHandle window) {
    windows.removeIf([&](const Window& w) { return w.handle == window; });
}

WindowHandle FakeWindowServices::GetWindow(WindowHandle window, WindowRelation relation) {
    switch (relation) {
    case WindowRelation::First:
        return windows.isEmpty() ? 0 : windows.first().handle;
    case WindowRelation::Next:
        for (int i = 0; i + 1 < windows.size(); ++i)
            if (windows[i].handle == window)
                return windows[i + 1].handle;
        return 0;
    case WindowRelation::Owner:
        for (const auto& w : windows)
            if (w.handle == window)
                return w.owner;
        return 0;
    }
    return 0;
}

void FakeWindowServices::Vanish(WindowHandle window) {
    for (auto& w : windows)
        if (w.handle == window)
            w.gone = true;
}

bool FakeWindowServices::IsWindow(WindowHandle window) {
    for (const auto& w : windows)
        if (w.handle == window)
            return !w.gone;
    return false;
}

QString FakeWindowServices::GetWindowText(WindowHandle window) {
    for (const auto& w : windows)
        if (w.handle == window)
            return w.title;
    return {};
}

std::uint32_t FakeWindowServices::GetStyle(WindowHandle window) {
    for (const auto& w : windows)
        if (w.handle == window)
            return w.style;
    return 0;
}

void FakeWindowServices::PostMessage(WindowHandle window, std::uint32_t message) {
    posts.append({window, message});
}

void FakeWindowServices::ProcessPendingEvents() {
    if (onPendingEvents)
        onPendingEvents();
}

ActivateResult FakeWindowServices::ActivateByTitle(const QString& title) {
    activations.append(title);
    for (const auto& w : windows)
        if (!w.gone && w.title.contains(title, Qt::CaseInsensitive))
            return focusStolen ? ActivateResult::NotFocused : ActivateResult::Activated;
    return ActivateResult::NotFound;
}
