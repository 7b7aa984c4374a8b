#include "platform/qt/CoverageCounters.h"

#include <csignal>

// Present only when the coverage runtime is linked in.
extern "C" void __gcov_dump(void) __attribute__((weak));

void WriteCoverageCounters() {
    if (__gcov_dump)
        __gcov_dump();
}

void WriteCoverageCountersOnTerminate() {
    if (!__gcov_dump)
        return;
    std::signal(SIGTERM, [](int) {
        __gcov_dump();
        std::signal(SIGTERM, SIG_DFL);
        std::raise(SIGTERM);
    });
}
