#include "transport/http_head.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace vorn {

namespace {

constexpr int BadRequest = 400;
constexpr int UnsupportedMediaType = 415;
constexpr int HeadersTooLarge = 431;
constexpr std::string_view LineEnd = "\r\n";

/// The headers that matter here, each with how often it came and its last value.
struct Seen {
    std::string_view name;  ///< in lower case
    bool hidden = false;    ///< from the library
    std::size_t count = 0;
    std::string_view value{};
};

enum Known : std::size_t { Length, Transfer, Encoding };

char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool SameName(std::string_view name, std::string_view lower) {
    return name.size() == lower.size() &&
           std::equal(name.begin(), name.end(), lower.begin(),
                      [](char letter, char wanted) { return Lower(letter) == wanted; });
}

bool Control(char byte) {
    return (static_cast<unsigned char>(byte) < ' ' && byte != '\t') || byte == '\x7f';
}

/// A character that a header's name may have.
bool OfName(char byte) {
    constexpr std::string_view Signs = "!#$%&'*+-.^_`|~";
    return (Lower(byte) >= 'a' && Lower(byte) <= 'z') || (byte >= '0' && byte <= '9') ||
           Signs.find(byte) != std::string_view::npos;
}

std::string_view Trimmed(std::string_view value) {
    constexpr std::string_view Blanks = " \t";
    const std::size_t first = std::min(value.find_first_not_of(Blanks), value.size());
    value.remove_prefix(first);
    return value.substr(0, value.find_last_not_of(Blanks) + 1);
}

/// Takes one line into what was seen; false for a line that is no header.
bool LineRead(std::span<char> line, std::span<Seen> known) {
    const auto colon = std::find(line.begin(), line.end(), ':');
    if (colon == line.end() || colon == line.begin() || !std::all_of(line.begin(), colon, OfName))
        return false;
    if (std::any_of(colon, line.end(), Control)) return false;
    const std::string_view name(line.data(), static_cast<std::size_t>(colon - line.begin()));
    const auto found =
        std::find_if(known.begin(), known.end(), [&](const Seen& each) { return SameName(name, each.name); });
    if (found == known.end()) return true;
    ++found->count;
    found->value = Trimmed(std::string_view(line.data(), line.size()).substr(name.size() + 1));
    if (found->hidden) *std::prev(colon) = '_';
    return true;
}

}  // namespace

std::size_t HeadEnd(std::string_view text, std::size_t& searched) {
    // The end may have come in two pieces.
    const std::size_t from = searched < 3 ? 0 : searched - 3;
    const std::size_t at = text.find("\r\n\r\n", from);
    searched = text.size();
    return at == std::string_view::npos ? 0 : at + 4;
}

HttpFraming FramingOf(std::string_view length, std::size_t lengths, std::string_view transfer,
                      std::size_t transfers) {
    constexpr HttpFraming Refused{.refused = BadRequest};
    if (lengths + transfers > 1) return Refused;
    if (transfers == 1) return SameName(transfer, "chunked") ? HttpFraming{.chunked = true} : Refused;
    HttpFraming framing;
    if (lengths == 0) return framing;
    // A sign or a blank is no digit, and too large a number leaves some unread or is an error.
    const char* const end = length.data() + length.size();
    const auto read = std::from_chars(length.data(), end, framing.bodyBytes);
    return read.ec == std::errc() && read.ptr == end ? framing : Refused;
}

HttpFraming HeadRead(std::span<char> head) {
    Seen known[] = {{"content-length"},
                    {"transfer-encoding"},
                    {"content-encoding"},
                    {"range", true},
                    {"accept-encoding", true}};
    std::string_view first;
    int lines = 0;
    for (;;) {
        const std::size_t end = std::string_view(head.data(), head.size()).find(LineEnd);
        const std::span<char> line = head.first(end);
        head = head.subspan(end + LineEnd.size());
        if (line.empty() && lines > 0) break;
        if (lines == 0) {
            first = {line.data(), line.size()};
            if (first.empty() || std::any_of(first.begin(), first.end(), Control))
                return {.refused = BadRequest};
        } else if (!LineRead(line, known)) {
            return {.refused = BadRequest};
        }
        if (++lines > HeadLinesAtMost + 1) return {.refused = HeadersTooLarge};
    }
    HttpFraming framing =
        FramingOf(known[Length].value, known[Length].count, known[Transfer].value, known[Transfer].count);
    // Only HTTP/1.1 has chunks; what stands before an older reader would not see their ends.
    if (framing.chunked && !first.ends_with(" HTTP/1.1")) framing.refused = BadRequest;
    if (framing.refused == 0 && known[Encoding].count > 0) framing.refused = UnsupportedMediaType;
    return framing;
}

}  // namespace vorn
