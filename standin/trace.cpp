#include "standin/trace.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "text/number_text.h"

namespace standin {

namespace {

const bool watched = std::getenv("VORN_ENGINE_TRACE") != nullptr;

struct Record {
    std::mutex lock;
    bool collecting = false;
    std::vector<std::string> lines;
};

// Never destroyed: the engine's threads may write while the process ends.
Record& TheRecord() {
    static Record& record = *new Record;
    return record;
}

}  // namespace

namespace detail {

std::atomic<bool> traceOn{watched};

void TraceArgument(std::string& line, std::string_view text) {
    line += '"';
    line += text;
    line += '"';
}

void TraceArgument(std::string& line, const LinkSxCache& link) {
    line += '{';
    for (int number : {link.Type, link.PageNb, link.F_Sx, link.F_Nb, link.F_PortNb, int{link.F_Type2},
                       link.S_Sx, link.S_Nb, link.S_PortNb, int{link.S_Type2}}) {
        if (line.back() != '{') line += ' ';
        line += std::to_string(number);
    }
    line += '}';
}

void TraceArgument(std::string& line, long long number) {
    line += std::to_string(number);
}
void TraceArgument(std::string& line, double number) {
    vorn::AppendReal(line, number);
}

}  // namespace detail

void TraceStart() {
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    record.lines.clear();
    record.collecting = true;
    detail::traceOn = true;
}

std::vector<std::string> TraceStop() {
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    record.collecting = false;
    detail::traceOn = watched;
    return std::exchange(record.lines, {});
}

void TraceLine(std::string line) {
    if (!detail::traceOn) return;
    if (watched) std::fprintf(stderr, "engine: %s\n", line.c_str());
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    if (record.collecting) record.lines.push_back(std::move(line));
}

}  // namespace standin
