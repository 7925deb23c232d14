// The record of boundary calls: every operation of the engine writes itself down here with its arguments, so
// that a test can hold the order of calls against the order that is required, and a person can watch them.
//
// Off at first. With VORN_ENGINE_TRACE set in the environment each call goes to standard error as it comes; a
// test collects them instead. A line looks as the call does: `ProjectAddModule("PLANT1",0,8,0,170,150)`.

#pragma once

#include <atomic>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/vorn_records.h"

namespace standin {

/// Starts collecting, with an empty record. Any thread may call operations meanwhile.
void TraceStart();
/// Ends collecting and gives what was collected, in order.
std::vector<std::string> TraceStop();
/// Adds a line that is no engine call, such as a sleep. Nothing is kept while nobody collects or watches.
void TraceLine(std::string line);

namespace detail {
/// Whether calls are kept; unknown until the first call, so that a host can set the environment in its
/// `main`.
enum class TraceState { Unknown, Off, On };
extern std::atomic<TraceState> traceState;
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

/// Writes one call down. Costs one load where nothing is traced.
template <typename... Arguments>
void Trace(std::string_view operation, const Arguments&... arguments) {
    if (detail::traceState.load(std::memory_order_relaxed) == detail::TraceState::Off) return;
    std::string line(operation);
    line += '(';
    ((detail::TraceArgument(line, arguments), line += ','), ...);
    if constexpr (sizeof...(arguments) > 0) line.pop_back();
    line += ')';
    TraceLine(std::move(line));
}

}  // namespace standin
