#include "host/send_place.h"

#include <cstdlib>
#include <sstream>

#include "host/private_file.h"
#include "platform/fault_text.h"
#include "platform/file_text.h"

namespace {

constexpr std::size_t CredentialsBytes = std::size_t{64} << 10U;

/// The library's https ends this program before a reply comes, for a reason that is not found yet: refused
/// until it is.
constexpr bool HasHttps = false;

constexpr const char* Form = "an address is of the form https://host:port/path or http://host:port/path";

/// True for a host with or without a port: nothing that would be a name, a query or a fragment.
bool HostIsPlain(const std::string& host) {
    if (host.empty() || host.find_first_of("@?#\\ \t\r\n") != std::string::npos) return false;
    const std::size_t bracket = host.rfind(']');  // of an address of IPv6
    const std::size_t colon = host.find(':', bracket == std::string::npos ? 0 : bracket);
    if (colon == 0) return false;
    if (colon == std::string::npos) return true;
    const std::string port = host.substr(colon + 1);
    return !port.empty() && port.size() <= 5 && port.find_first_not_of("0123456789") == std::string::npos &&
           std::stoi(port) >= 1 && std::stoi(port) <= 65535;
}

}  // namespace

bool SendPlaceRead(const std::string& address, SendPlace& place, std::string& fault) {
    const std::size_t scheme = address.find("://");
    const std::string word = address.substr(0, scheme);
    if (scheme == std::string::npos || (word != "http" && word != "https")) return fault = Form, false;
    const std::size_t slash = address.find('/', scheme + 3);
    const std::string host =
        address.substr(scheme + 3, slash == std::string::npos ? slash : slash - scheme - 3);
    if (host.find('@') != std::string::npos) {
        return fault = "a name and a password do not belong into an address", false;
    }
    std::string path = slash == std::string::npos ? std::string() : address.substr(slash);
    while (path.ends_with('/')) path.pop_back();
    if (!HostIsPlain(host) || path.find_first_of("?#\\ \t\r\n") != std::string::npos)
        return fault = Form, false;
    place = {.origin = word + "://" + host, .path = path, .secure = word == "https"};
    if (place.secure && !HasHttps) return fault = "this vorn-send has no https yet", false;
    return true;
}

bool CredentialsParse(const std::string& text, Credentials& credentials, std::string& fault) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (line.empty()) continue;
        const std::size_t blank = line.find(' ');
        const std::string key = line.substr(0, blank);
        std::string* const value = key == "user"       ? &credentials.user
                                   : key == "password" ? &credentials.password
                                   : key == "token"    ? &credentials.token
                                                       : nullptr;
        if (value == nullptr || blank == std::string::npos) {
            return fault = "a line of credentials is user, password or token, a blank, and its text", false;
        }
        *value = line.substr(blank + 1);
    }
    return true;
}

bool CredentialsFind(const std::string& file, Credentials& credentials, std::string& fault) {
    const std::string path = file.empty() ? EnvironmentText("VORNSERVER_CREDENTIALS") : file;
    if (path.empty()) {
        credentials = {EnvironmentText("VORNSERVER_USER"), EnvironmentText("VORNSERVER_PASSWORD"),
                       EnvironmentText("VORNSERVER_TOKEN")};
        return true;
    }
    std::string text;
    std::error_code unread;
    if (OthersMayOpen(path)) {
        fault = "other users can read '" + path + "'; give it mode 600";
    } else if (!vorn::FileRead(path, CredentialsBytes, text, unread)) {
        fault = "cannot read the file '" + path + "': " + vorn::FaultText(unread);
    } else if (!CredentialsParse(text, credentials, fault)) {
        fault = path + ": " + fault;
    }
    return fault.empty();
}

std::string EnvironmentText(const char* name) {
    const char* const text = std::getenv(name);
    return text == nullptr ? std::string() : std::string(text);
}
