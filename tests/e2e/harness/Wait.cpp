#include "Wait.h"

#include <thread>

namespace e2e {

bool WaitUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout,
               std::chrono::milliseconds poll) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        if (done())
            return true;
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(poll);
    }
}

} // namespace e2e
