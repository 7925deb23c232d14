#include "host/event_names.h"

#include <array>

namespace {

using Names = const char*;

constexpr std::array<Names, FrontCount> Fronts{"http", "pipe", "serial", "console"};
constexpr std::array<Names, ReplyKindCount> ReplyKinds{
    "ok",           "refused", "unknown_variable", "unknown_project", "unknown_element", "unknown_command",
    "bad_envelope", "mishap",  "value_or_text"};
constexpr std::array<Names, 3> Stores{"none", "stored", "failed"};
constexpr std::array<Names, RunStateCount> RunStates{"closed", "stopped", "running", "paused"};
constexpr std::array<Names, NoticeKindCount> NoticeKinds{"information", "fault", "stored", "store_failed",
                                                         "trace"};

}  // namespace

const char* NameOf(vorn::Front front) {
    return Fronts.at(static_cast<std::size_t>(front));
}
const char* NameOf(vorn::ReplyKind kind) {
    return ReplyKinds.at(static_cast<std::size_t>(kind));
}
const char* NameOf(vorn::StoreEnd store) {
    return Stores.at(static_cast<std::size_t>(store));
}
const char* NameOf(vorn::RunState state) {
    return RunStates.at(static_cast<std::size_t>(state));
}
const char* NameOf(vorn::NoticeKind kind) {
    return NoticeKinds.at(static_cast<std::size_t>(kind));
}
