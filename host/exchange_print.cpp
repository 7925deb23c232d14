#include "host/exchange_print.h"

#include <algorithm>
#include <new>

#include "include/vorn_server.h"
#include "platform/visible.h"

namespace {

/// The first half of an exchange has a blank behind its header and one behind its name; a whole one has more.
bool FirstHalf(std::string_view line) {
    return line.ends_with(' ') && std::count(line.begin(), line.end(), ' ') == 2;
}

/// How the console marks the messages of what it asks for itself, once a second and when it reads a plant.
constexpr std::string_view ConsoleMark = R"( {"By":"console")";

}  // namespace

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
        } else if (line.find(ConsoleMark) == std::string::npos) {
            lines.append(mark_).append(vorn::Visible(line)) += '\n';
        }
        if (more) log.remove_prefix(end + 1);
    }
    return lines;
}

void ExchangePrinter::Poll() {
    try {
        if (RtnSet_SxGet()) show_(writes_.Take(Rtn_Set_Get()));
        if (RtnGet_SxGet()) show_(reads_.Take(Rtn_Get_Get()));
    } catch (const std::bad_alloc&) {
        // These lines are not shown; the service goes on.
    }
}
