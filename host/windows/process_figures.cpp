#include "host/process_figures.h"

#include <windows.h>

#include <psapi.h>

std::size_t ResidentBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    return GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) != 0
               ? counters.WorkingSetSize
               : 0;
}
