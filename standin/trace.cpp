#include "standin/trace.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "text/number_text.h"

namespace standin {

namespace {

template <typename Number>
void ArrayArgument(std::string& line, std::span<const Number> numbers) {
    line += '[';
    for (const Number number : numbers) {
        if (line.back() != '[') line += ' ';
        detail::TraceArgument(line, number);
    }
    line += ']';
}

struct Record {
    std::mutex lock;
    const bool watched = std::getenv("VORN_ENGINE_TRACE") != nullptr;
    bool collecting = false;
    std::vector<std::string> lines;
};

// Never destroyed: the engine's threads may write while the process ends.
Record& TheRecord() {
    static Record& record = *new Record;
    return record;
}

/// The record's lock is held.
void StateSet(const Record& record) {
    detail::traceState =
        record.watched || record.collecting ? detail::TraceState::On : detail::TraceState::Off;
}

}  // namespace

namespace detail {

std::atomic<TraceState> traceState{TraceState::Unknown};

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
void TraceArgument(std::string& line, std::span<const double> numbers) {
    ArrayArgument(line, numbers);
}
void TraceArgument(std::string& line, std::span<const int> numbers) {
    ArrayArgument(line, numbers);
}

}  // namespace detail

void TraceStart() {
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    record.lines.clear();
    record.collecting = true;
    StateSet(record);
}

std::vector<std::string> TraceStop() {
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    record.collecting = false;
    StateSet(record);
    return std::exchange(record.lines, {});
}

void TraceLine(std::string line) {
    if (detail::traceState == detail::TraceState::Off) return;
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    StateSet(record);
    if (record.watched) std::fprintf(stderr, "engine: %s\n", line.c_str());
    if (record.collecting) record.lines.push_back(std::move(line));
}

}  // namespace standin
