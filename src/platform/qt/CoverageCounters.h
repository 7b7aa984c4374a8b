#pragma once

// In a coverage build (scripts/coverage.sh) the counters are written when the
// program ends through exit handlers; these write them where it ends otherwise: at
// EndNow, and on SIGTERM, which is how the end-to-end tests stop it. In any other build
// they do nothing.
void WriteCoverageCounters();
void WriteCoverageCountersOnTerminate();
