#pragma once

// Keeps up to 64 MiB of freed memory at the top of the heap for the next allocations instead
// of handing it back to the system at once. The map dialog frees and rebuilds tens of
// thousands of level names at every opening; returning and faulting those pages in again
// costs about as much as reading the archives.
void KeepFreedHeap();
