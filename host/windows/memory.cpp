#include "host/memory.h"

#include <malloc.h>

// This system's heap keeps no large blocks.
void MemorySetUp() {}

void HeapTrim() {
    _heapmin();
}
