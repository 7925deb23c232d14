#include "host/console.h"

#include <httplib.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <memory>
#include <thread>

#include "host/console_files.h"
#include "host/event_log.h"
#include "service/api_envelope.h"
#include "transport/http_server.h"

namespace {

constexpr std::size_t BodyBytesAtMost = 64U << 20U;
constexpr int HeadMilliseconds = 5000;
constexpr int BodyMilliseconds = 10000;

constexpr const char* ContentPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data: blob:; connect-src "
    "'self'; "
    "worker-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

struct Console {
    std::unique_ptr<vorn::HttpServer> server{};
    std::map<std::string, ConsoleFile> files{};  ///< by path
    ConsoleAddress address{};                    ///< with the port that it has
};

/// True for a request whose `Host` is the console's own and whose `Origin`, where there is one, is the
/// console itself: no page of the web reaches a plant.
bool FromOwnPage(const Console& console, const httplib::Request& request) {
    if (request.get_header_value_count("Host") != 1 || request.get_header_value_count("Origin") > 1)
        return false;
    const std::string host = request.get_header_value("Host");
    return vorn::HostIsOwn(host, console.address.host, console.address.port) &&
           (!request.has_header("Origin") || request.get_header_value("Origin") == "http://" + host);
}

/// Runs a command of the page. Its reply ends at its first zero byte, as on the service's own port.
void Api(const httplib::Request& request, const std::string& body, httplib::Response& response) {
    std::string reply;
    vorn::ApiEnvelope(body, reply, {.front = vorn::Front::Console, .peer = request.remote_addr});
    reply.resize(std::min(reply.find('\0'), reply.size()));
    response.set_content(reply, "text/plain; charset=utf-8");
}

void Events(const httplib::Request& request, httplib::Response& response) {
    const std::string text = request.get_param_value("after");
    std::uint64_t after = 0;
    std::from_chars(text.data(), text.data() + text.size(), after);
    response.set_content(EventsJson(after), "application/json");
}

void FileServe(const Console& console, const httplib::Request& request, httplib::Response& response) {
    const auto file = console.files.find(request.path == "/" ? "/index.html" : request.path);
    if (file == console.files.end()) {
        response.status = 404;
        return;
    }
    response.set_content(file->second.content, file->second.type);
}

void Prepare(Console& console) {
    console.server = std::make_unique<vorn::HttpServer>(vorn::HttpRules{
        .headMilliseconds = HeadMilliseconds,
        .bodyMilliseconds = BodyMilliseconds,
        .admits = [&console](const httplib::Request& request) { return FromOwnPage(console, request); },
        .refusal = "this console serves its own page only\n"});
    console.server->set_payload_max_length(BodyBytesAtMost);
    console.server->set_default_headers({{"Content-Security-Policy", ContentPolicy},
                                         {"X-Content-Type-Options", "nosniff"},
                                         {"Referrer-Policy", "no-referrer"},
                                         {"Cross-Origin-Resource-Policy", "same-origin"},
                                         {"Cross-Origin-Opener-Policy", "same-origin"},
                                         {"Cache-Control", "no-cache"}});
    console.server->PostWhole("/api", Api);
    console.server->Get("/events", Events);
    console.server->Get(".*", [&console](const httplib::Request& request, httplib::Response& response) {
        FileServe(console, request, response);
    });
}

/// The port that was bound, 0 for none.
int Bind(Console& console, const ConsoleAddress& address) {
    const int first = address.port == 0 ? FirstConsolePort : address.port;
    const int last = address.port == 0 ? LastConsolePort : address.port;
    for (int port = first; port <= last; ++port) {
        Prepare(console);
        if (console.server->Bind(address.host, port)) return port;
    }
    return 0;
}

}  // namespace

std::string ConsoleStart(const ConsoleAddress& address, const std::filesystem::path& folder,
                         std::string& fault) {
    static Console& console = *new Console;
    console.files = ConsoleFilesRead(folder);
    if (!console.files.contains("/index.html")) {
        fault = "its page is not built; that takes Node and npm";
        return {};
    }
    const int port = Bind(console, address);
    if (port == 0) {
        fault = "no port is free at " + address.host;
        return {};
    }
    console.address = {address.host, port};
    std::thread([] { console.server->listen_after_bind(); }).detach();
    return LinkTo(address.IsEverywhere() ? "127.0.0.1" : address.host, port) + "/";
}
