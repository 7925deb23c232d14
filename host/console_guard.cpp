#include "host/console_guard.h"

#include <string_view>

namespace {

/// An address in numbers. No name of the web can look like one, so that none can be made to lead here.
bool Numeric(std::string_view host) {
    return host.starts_with('[') || host.find_first_not_of("0123456789.") == std::string_view::npos;
}

}  // namespace

bool FromOwnPage(const ConsolePlace& place, const httplib::Request& request) {
    if (request.get_header_value_count("Host") != 1 || request.get_header_value_count("Origin") > 1)
        return false;
    const std::string host = request.get_header_value("Host");
    if (!host.ends_with(place.portText)) return false;
    const std::string_view name = std::string_view(host).substr(0, host.size() - place.portText.size());
    const bool own = name == place.address.host || name == "localhost" || name == "127.0.0.1" ||
                     name == "[::1]" || name == "[" + place.address.host + "]" ||
                     (place.address.IsEverywhere() && Numeric(name));
    return own && (!request.has_header("Origin") || request.get_header_value("Origin") == "http://" + host);
}
