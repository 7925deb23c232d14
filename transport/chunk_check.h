// The framing of a body that comes in chunks.

#pragma once

#include <cstddef>
#include <cstdint>

namespace vorn {

/// Follows a chunked body as it passes, byte for byte. It accepts hexadecimal sizes, extensions, and the end
/// of each line as CR LF; no sign, no blank, no prefix, and no headers behind the last chunk.
class ChunkCheck {
  public:
    /// Looks at the bytes that come next and returns how many of them belong to the body: fewer than `size`
    /// behind its end or from a fault on.
    std::size_t Take(const char* bytes, std::size_t size);
    /// The last chunk was whole.
    bool Done() const { return state_ == State::Done; }
    bool Faulty() const { return state_ == State::Faulty; }

  private:
    enum class State {
        Size,
        Extension,
        SizeEnd,
        Data,
        DataReturn,
        DataEnd,
        LastReturn,
        LastEnd,
        Done,
        Faulty
    };
    State Next(char byte);
    State NextOfSize(char byte);

    State state_ = State::Size;
    std::uint64_t left_ = 0;  ///< bytes of the chunk that are still to come
    int lineBytes_ = 0;       ///< of the line with its size
};

}  // namespace vorn
