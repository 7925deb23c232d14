#include "transport/http_rules.h"

namespace vorn {

namespace {

/// An address in numbers. No name of the web can look like one.
bool Numeric(std::string_view host) {
    return host.starts_with('[') || host.find_first_not_of("0123456789.") == std::string_view::npos;
}

}  // namespace

bool HostIsOwn(std::string_view header, const std::string& host, int port) {
    constexpr int LinksOwn = 80;  // browsers leave out the port that links have by themselves
    const std::string portText = port == LinksOwn ? "" : ":" + std::to_string(port);
    if (!header.ends_with(portText)) return false;
    const std::string_view name = header.substr(0, header.size() - portText.size());
    const bool everywhere = host == "0.0.0.0" || host == "::";
    return name == host || name == "localhost" || name == "127.0.0.1" || name == "[::1]" ||
           name == "[" + host + "]" || (everywhere && Numeric(name));
}

}  // namespace vorn
