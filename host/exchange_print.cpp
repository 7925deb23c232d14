#include "host/exchange_print.h"

#include <algorithm>
#include <cstdio>

#include "include/vorn_server.h"
#include "platform/utf8.h"

namespace {

/// Bytes of the UTF-8 character that `text` begins with; 0 when it begins with none that may be shown.
std::size_t ShownBytes(std::string_view text) {
    const vorn::Utf8Character character = vorn::Utf8First(text);
    const bool control = character.code < 0x20 || (character.code >= 0x7F && character.code < 0xA0);
    return control ? 0 : character.bytes;
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
