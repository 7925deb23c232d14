// The trace of an engine in service: for a person to watch.

#include "standin/trace.h"

#include <cstdio>
#include <cstdlib>

namespace standin {

void TraceLine(std::string line) {
    static const bool watched = std::getenv("VORN_ENGINE_TRACE") != nullptr;
    if (watched) {
        std::fprintf(stderr, "engine: %s\n", line.c_str());
    } else {
        traced = false;
    }
}

}  // namespace standin
