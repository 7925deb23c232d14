// The head of an HTTP request, looked at before the HTTP library reads it.

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vorn {

inline constexpr std::size_t HeadBytesAtMost = 65536;
inline constexpr int HeadLinesAtMost = 100;

/// What the head says of the body behind it.
struct HttpFraming {
    int refused = 0;            ///< the status that refuses the request, 0 for one that may be served
    std::size_t headBytes = 0;  ///< what is left of the head, from its begin on
    bool chunked = false;
    std::uint64_t bodyBytes = 0;  ///< where it is not chunked
};

/// How much of `text` is a head, with its empty line; 0 where that has not come yet. `searched` counts the
/// bytes that earlier calls have looked at: 0 for the first, and then what the call before left there.
std::size_t HeadEnd(std::string_view text, std::size_t& searched);

/// Reads a whole head. Two readers could take the end of a request for two different places where its
/// length is not one decimal number, or is given beside chunks, where it has a coding other than
/// `chunked`, or a line that is no header; each of these is refused with 400. A packed body
/// (`Content-Encoding`) is refused with 415, more than `HeadLinesAtMost` headers with 431.
///
/// Takes out the headers that nothing here reads: by a `Range` the library would refuse a request or cut its
/// reply, by `Accept-Encoding` take seconds to pack a megabyte, and each of the rest costs it time.
HttpFraming HeadRead(std::span<char> head);

/// True where a list of a head's values has the framing that `HeadRead` accepts: for callers that see
/// headers and no lines. A count of 0 says that there is no such header.
HttpFraming FramingOf(std::string_view length, std::size_t lengths, std::string_view transfer,
                      std::size_t transfers);

}  // namespace vorn
