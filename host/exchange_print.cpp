#include "host/exchange_print.h"

#include <algorithm>
#include <cstdio>

#include "include/vorn_server.h"

namespace {

/// Bytes of the UTF-8 character that `text` begins with; 0 when it begins with none that may be shown.
std::size_t ShownBytes(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return first >= 0x20 && first != 0x7F ? 1 : 0;
    std::size_t length = 0;
    if (first >= 0xC2 && first <= 0xDF) length = 2;
    if (first >= 0xE0 && first <= 0xEF) length = 3;
    if (first >= 0xF0 && first <= 0xF4) length = 4;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t at = 1; at < length; ++at) {
        if ((byte(at) & 0xC0U) != 0x80U) return 0;
    }
    const bool furtherControl = first == 0xC2 && byte(1) < 0xA0;
    const bool tooLong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xF0 && byte(1) < 0x90);
    return furtherControl || tooLong ? 0 : length;
}

/// The first half of an exchange has a blank behind its header and one behind its name; a whole one has more.
bool FirstHalf(std::string_view line) {
    return line.ends_with(' ') && std::count(line.begin(), line.end(), ' ') == 2;
}

void Print(const std::string& lines) {
    std::fwrite(lines.data(), 1, lines.size(), stdout);
    std::fflush(stdout);
}

}  // namespace

std::string Visible(std::string_view text) {
    constexpr std::string_view HexDigits = "0123456789ABCDEF";
    std::string visible;
    while (!text.empty()) {
        const std::size_t shown = ShownBytes(text);
        if (shown > 0) {
            visible += text.substr(0, shown);
        } else {
            const auto byte = static_cast<unsigned char>(text[0]);
            visible.append("\\x") += HexDigits[byte >> 4U];
            visible += HexDigits[byte & 0xFU];
        }
        text.remove_prefix(std::max<std::size_t>(shown, 1));
    }
    return visible;
}

std::string ExchangeLines::Take(std::string_view log) {
    std::string lines;
    for (bool more = true; more;) {
        const std::size_t end = log.find('\n');
        more = end != std::string_view::npos;
        std::string line = half_;
        line += log.substr(0, end);
        half_.clear();
        if (!more && FirstHalf(line)) {
            half_ = std::move(line);
        } else {
            lines.append(mark_).append(Visible(line)) += '\n';
        }
        if (more) log.remove_prefix(end + 1);
    }
    return lines;
}

void ExchangePrinter::Poll() {
    if (RtnSet_SxGet()) Print(writes_.Take(Rtn_Set_Get()));
    if (RtnGet_SxGet()) Print(reads_.Take(Rtn_Get_Get()));
}
