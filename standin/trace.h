// The trace of boundary calls: every operation of the engine tells its name and arguments here, as the call
// looks: `ProjectAddModule("PLANT1",0,8,0,170,150)`. In service the lines go to standard error where
// VORN_ENGINE_TRACE is set in the environment (`service/trace.cpp`); under test they can be collected
// (`levers/trace_record.h`).

#pragma once

#include <atomic>
#include <span>
#include <string>
#include <string_view>

#include "engine/vorn_records.h"

namespace standin {

/// Takes a line, an engine call or another event such as a sleep. Where nobody wants lines it says so in
/// `traced`. Any thread may call it.
void TraceLine(std::string line);

/// Whether lines are made. True at first, so that the first line finds out: a host sets the environment in
/// its `main`, behind the loading of this library.
extern std::atomic<bool> traced;

namespace detail {
void TraceArgument(std::string& line, std::string_view text);
void TraceArgument(std::string& line, const LinkSxCache& link);
void TraceArgument(std::string& line, long long number);
void TraceArgument(std::string& line, double number);
void TraceArgument(std::string& line, std::span<const double> numbers);
void TraceArgument(std::string& line, std::span<const int> numbers);
inline void TraceArgument(std::string& line, const char* text) {
    TraceArgument(line, std::string_view(text == nullptr ? "" : text));
}
inline void TraceArgument(std::string& line, int number) {
    TraceArgument(line, static_cast<long long>(number));
}
inline void TraceArgument(std::string& line, long number) {
    TraceArgument(line, static_cast<long long>(number));
}
inline void TraceArgument(std::string& line, bool flag) {
    line += flag ? "true" : "false";
}
}  // namespace detail

namespace detail {
template <typename... Arguments>
void CallTrace(std::string_view operation, const Arguments&... arguments) {
    std::string line(operation);
    line += '(';
    ((TraceArgument(line, arguments), line += ','), ...);
    if constexpr (sizeof...(arguments) > 0) line.pop_back();
    line += ')';
    TraceLine(std::move(line));
}
}  // namespace detail

/// Writes one call down. Costs one load where nothing is traced.
template <typename... Arguments>
void Trace(std::string_view operation, const Arguments&... arguments) {
    if (traced.load(std::memory_order_relaxed)) detail::CallTrace(operation, arguments...);
}

}  // namespace standin
