#include "platform/posix/Heap.h"

#include <malloc.h>

void KeepFreedHeap() {
    mallopt(M_TRIM_THRESHOLD, 64 << 20);
}
