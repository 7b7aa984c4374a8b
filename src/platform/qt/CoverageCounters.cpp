#include "platform/qt/CoverageCounters.h"

#include <csignal>

// scripts/coverage.sh defines HOSTWARDEN_COVERAGE and links the coverage runtime.
#ifdef HOSTWARDEN_COVERAGE

extern "C" void __gcov_dump(void);

void WriteCoverageCounters() {
    __gcov_dump();
}

void WriteCoverageCountersOnTerminate() {
    std::signal(SIGTERM, [](int) {
        __gcov_dump();
        std::signal(SIGTERM, SIG_DFL);
        std::raise(SIGTERM);
    });
}

#else

void WriteCoverageCounters() {}
void WriteCoverageCountersOnTerminate() {}

#endif
