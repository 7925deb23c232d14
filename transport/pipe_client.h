// The client of the pipe service, the same on all systems.

#pragma once

#include <string>

namespace vorn {

enum class PipeAnswer {
    Whole,
    NoPipe,   ///< nobody serves a pipe of that name
    BrokeOff  ///< no reply, half of one, or one over `PipeReplyBytesAtMost`
};

/// Sends `message` to the pipe of that name and waits for its reply, which is empty unless it came whole.
/// The word "none" stands for the empty text on the pipe, in both directions. After each full chunk of the
/// reply the client rests for so many milliseconds.
PipeAnswer PipeAsk(const char* name, std::string message, int chunkRestMilliseconds, std::string& reply);

/// What stands for the empty text on the pipe.
inline constexpr const char* PipeEmptyMark = "none";

}  // namespace vorn
