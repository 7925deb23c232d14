// What the engine reports to whoever runs it.

#pragma once

#include <cstdint>
#include <string_view>

namespace vorn {

enum class NoticeKind : std::uint8_t {
    Information,
    Fault,
    Stored,       ///< a project was stored
    StoreFailed,  ///< a project could not be stored
    Trace         ///< one call of the engine
};

/// Reports one line, without its end. Never waits for who reads. Any thread may call.
void Notice(NoticeKind kind, std::string_view line);

/// Takes the notices of all threads, on the thread that reports. Must not report itself.
using NoticeSink = void (*)(NoticeKind kind, std::string_view line);

/// Puts `sink` in the place of the sink that is there at first. That one writes all kinds but `Stored` to
/// standard error: what the stream does not take at once is written later, at the latest when the process
/// ends by itself; a line gives the number of those that were dropped.
void NoticeSinkSet(NoticeSink sink);

}  // namespace vorn
