#include "platform/x11/XConnectionLoss.h"

#include <mutex>
#include <set>

#include <X11/Xlib.h>

namespace {

std::mutex lock;
std::set<Display*> survivors;
XIOErrorHandler previous = nullptr;

int OnConnectionBroken(Display* display) {
    {
        std::lock_guard guard(lock);
        // Returning hands over to the connection's exit handler, `onLost`.
        if (survivors.count(display))
            return 0;
    }
    return previous ? previous(display) : 0;
}

} // namespace

void SurviveConnectionLoss(Display* display, void (*onLost)(Display*, void*), void* data) {
    std::lock_guard guard(lock);
    XIOErrorHandler current = XSetIOErrorHandler(OnConnectionBroken);
    if (current != OnConnectionBroken)
        previous = current;
    survivors.insert(display);
    XSetIOErrorExitHandler(display, onLost, data);
}

void ForgetConnection(Display* display) {
    std::lock_guard guard(lock);
    survivors.erase(display);
}
