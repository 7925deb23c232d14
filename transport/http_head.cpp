#include "transport/http_head.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace vorn {

namespace {

constexpr int BadRequest = 400;
constexpr int UnsupportedMediaType = 415;
constexpr int HeadersTooLarge = 431;
constexpr std::string_view LineEnd = "\r\n";

/// The headers that matter here, each with how often it came and its last value.
struct Seen {
    std::string_view name;  ///< in lower case
    bool dropped = false;   ///< nothing here reads it
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

enum class Line { Kept, Dropped, NoHeader };

/// Takes one line into what was seen.
Line LineRead(std::string_view line, std::span<Seen> known) {
    const std::string_view name = line.substr(0, line.find(':'));
    if (name.empty() || name.size() == line.size() || !std::all_of(name.begin(), name.end(), OfName) ||
        std::any_of(line.begin(), line.end(), Control)) {
        return Line::NoHeader;
    }
    const auto found =
        std::find_if(known.begin(), known.end(), [&](const Seen& each) { return SameName(name, each.name); });
    if (found == known.end()) return Line::Kept;
    ++found->count;
    found->value = Trimmed(line.substr(name.size() + 1));
    return found->dropped ? Line::Dropped : Line::Kept;
}

/// The lines of a head, one by one, from which some are taken out.
class Lines {
  public:
    explicit Lines(std::span<char> head) : head_(head) {}
    /// The next line, where it will stay.
    std::string_view Next() {
        const std::string_view rest = std::string_view(head_.data(), head_.size()).substr(read_);
        lineBytes_ = rest.find(LineEnd) + LineEnd.size();
        char* const to = head_.data() + kept_;
        if (kept_ != read_) std::memmove(to, rest.data(), lineBytes_);
        read_ += lineBytes_;
        kept_ += lineBytes_;
        return {to, lineBytes_ - LineEnd.size()};
    }
    /// Takes the last line out.
    void Drop() { kept_ -= lineBytes_; }
    std::size_t Kept() const { return kept_; }

  private:
    std::span<char> head_;
    std::size_t read_ = 0;
    std::size_t kept_ = 0;
    std::size_t lineBytes_ = 0;  ///< of the last line, with its end
};

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
    Seen known[] = {{"content-length"}, {"transfer-encoding"}, {"content-encoding"},     {"range", true},
                    {"accept", true},   {"user-agent", true},  {"accept-encoding", true}};
    constexpr HttpFraming Refused{.refused = BadRequest};
    Lines lines(head);
    const std::string_view first = lines.Next();
    if (first.empty() || std::any_of(first.begin(), first.end(), Control)) return Refused;
    int count = 0;
    for (std::string_view line = lines.Next(); !line.empty(); line = lines.Next()) {
        if (++count > HeadLinesAtMost) return {.refused = HeadersTooLarge};
        const Line read = LineRead(line, known);
        if (read == Line::NoHeader) return Refused;
        if (read == Line::Dropped) lines.Drop();
    }
    HttpFraming framing =
        FramingOf(known[Length].value, known[Length].count, known[Transfer].value, known[Transfer].count);
    // Only HTTP/1.1 has chunks; what stands before an older reader would not see their ends.
    if (framing.chunked && !first.ends_with(" HTTP/1.1")) framing.refused = BadRequest;
    if (framing.refused == 0 && known[Encoding].count > 0) framing.refused = UnsupportedMediaType;
    framing.headBytes = lines.Kept();
    return framing;
}

}  // namespace vorn
