#pragma once

#include <chrono>
#include <functional>

namespace e2e {

using namespace std::chrono_literals;

// Polls `done` with short sleeps until it holds or `timeout` passes; true when it held.
// For waiting on other processes (a window to appear, a file to be written), never on
// the program's own timers.
bool WaitUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout,
               std::chrono::milliseconds poll = 20ms);

} // namespace e2e
