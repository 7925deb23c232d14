// Lines on their way to a standard stream. Whoever prints never waits for who reads.

#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/write_now.h"

namespace vorn {

/// What the stream does not take at once is kept. While that is more than nothing, lines that would bring it
/// over `limit` bytes are dropped, and a line in their place gives their number. Any thread may call.
class LineQueue {
  public:
    explicit LineQueue(StandardStream stream, std::size_t limit = DefaultLimit)
        : stream_(stream), limit_(limit) {}

    /// Adds whole lines, each with its end, and writes what the stream takes. True when nothing is left.
    bool Put(std::string_view lines);
    /// Writes what the stream takes by now. True when nothing is left.
    bool Send();

    struct Patience {
        std::chrono::milliseconds still{500};   ///< for a reader that takes nothing
        std::chrono::milliseconds whole{5000};  ///< for one that reads slowly
    };
    /// For the end of the process: writes what is left while somebody reads it. What remains then is dropped;
    /// returns the number of dropped lines. Never waits for a thread that the end of the process stopped.
    std::size_t Finish(Patience patience);
    std::size_t Finish() { return Finish({}); }

  private:
    static constexpr std::size_t DefaultLimit = std::size_t{1} << 20U;

    void AddDroppedNumber();
    void SendKept();
    std::size_t DropKept();

    const StandardStream stream_;
    const std::size_t limit_;
    std::mutex lock_;
    std::string kept_;
    std::size_t dropped_ = 0;  ///< lines, since the last that was kept
};

}  // namespace vorn
