#include "host/console_address.h"

#include <charconv>
#include <string_view>

#include "include/vorn_contract.h"

bool ConsoleAddressRead(const std::string& text, ConsoleAddress& address, std::string& fault) {
    const std::size_t bracket = text.starts_with('[') ? text.find(']') : 0;
    const std::size_t colon = bracket == std::string::npos ? bracket : text.find(':', bracket);
    address.host = text.substr(0, colon);
    if (bracket != 0 && bracket != std::string::npos) address.host = text.substr(1, bracket - 1);
    address.port = 0;
    const std::string_view digits =
        colon == std::string::npos ? "" : std::string_view(text).substr(colon + 1);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), address.port);
    const bool whole =
        colon == std::string::npos || (read.ec == std::errc() && read.ptr == digits.data() + digits.size());
    if (address.host.empty() || bracket == std::string::npos || !whole || address.port < 0 ||
        address.port > 65535) {
        fault = "cannot read '" + text + "' as ADDRESS:PORT";
    } else if (address.port >= VORN_FIRST_PORT && address.port <= VORN_LAST_PORT) {
        fault = "the ports " + std::to_string(VORN_FIRST_PORT) + " to " + std::to_string(VORN_LAST_PORT) +
                " are the service's own";
    }
    return fault.empty();
}

std::string PortText(int port) {
    constexpr int LinksOwn = 80;
    return port == LinksOwn ? "" : ":" + std::to_string(port);
}

std::string LinkTo(const std::string& host, int port) {
    const bool bracketed = host.find(':') != std::string::npos;
    return "http://" + (bracketed ? "[" + host + "]" : host) + PortText(port);
}
