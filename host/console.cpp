#include "host/console.h"

#include <httplib.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <deque>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "include/vorn_contract.h"
#include "platform/executable_path.h"
#include "transport/http_server.h"

namespace {

constexpr std::size_t BodyBytesAtMost = 64U << 20U;
constexpr std::size_t LinesKept = 2000;
constexpr std::size_t LineBytesAtMost = 4000;
constexpr std::size_t LinesAtOnce = 500;
constexpr int AnswerSeconds = 600;
constexpr int HeadMilliseconds = 5000;
constexpr int BodyMilliseconds = 10000;

constexpr const char* ContentPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data: blob:; connect-src "
    "'self'; "
    "worker-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

struct FileKind {
    std::string_view ending;
    const char* type;
};

constexpr FileKind FileKinds[] = {
    {".html", "text/html; charset=utf-8"}, {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},   {".svg", "image/svg+xml"},
    {".txt", "text/plain; charset=utf-8"},
};

struct File {
    const char* type;
    std::string content;
};

struct LogLine {
    std::uint64_t number;
    std::int64_t time;
    std::string text;
};

struct Log {
    std::mutex lock{};  ///< guards all below
    std::deque<LogLine> lines{};
    std::uint64_t next = 1;
};

struct Console {
    std::unique_ptr<vorn::HttpServer> server{};
    std::map<std::string, File> files{};  ///< by path
    std::string host{};                   ///< as it was asked for
    int port = 0;
    int servicePort = 0;
};

// Never destroyed: the process ends around its threads.
Log& TheLog() {
    static Log& log = *new Log;
    return log;
}

/// The page's files, read whole: what is not in this list is not served, whatever a path says.
std::map<std::string, File> FilesRead(const std::filesystem::path& folder) {
    std::map<std::string, File> files;
    std::error_code fault;
    for (const auto& entry : std::filesystem::directory_iterator(folder, fault)) {
        const std::string name = entry.path().filename().string();
        const auto* kind = std::find_if(std::begin(FileKinds), std::end(FileKinds),
                                        [&](const FileKind& each) { return name.ends_with(each.ending); });
        std::ifstream stream(entry.path(), std::ios::binary);
        if (kind == std::end(FileKinds) || !stream) continue;
        files["/" + name] = {kind->type, {std::istreambuf_iterator<char>(stream), {}}};
    }
    return files;
}

/// True for a request that names this console as its host and does not come from a page of another one.
bool FromHere(const Console& console, const httplib::Request& request) {
    if (request.get_header_value_count("Host") != 1 || request.get_header_value_count("Origin") > 1)
        return false;
    const std::string host = request.get_header_value("Host");
    return vorn::HostIsOwn(host, console.host, console.port) &&
           (!request.has_header("Origin") || request.get_header_value("Origin") == "http://" + host);
}

/// Passes a request on to the library and its answer back.
void Pass(const Console& console, const httplib::Request& request, httplib::Response& response) {
    httplib::Client client("127.0.0.1", console.servicePort);
    client.set_read_timeout(AnswerSeconds);
    client.set_write_timeout(AnswerSeconds);
    client.set_tcp_nodelay(true);  // head and body are two writes
    const auto answer = client.Post("/api", request.body, "application/json");
    response.status = answer ? answer->status : 502;
    response.set_content(answer ? answer->body : "the service gives no answer", "text/plain; charset=utf-8");
}

/// `text`, which has no control characters, in JSON quotes.
void AppendQuoted(std::string& json, std::string_view text) {
    json += '"';
    for (const char character : text) {
        if (character == '"' || character == '\\') json += '\\';
        json += character;
    }
    json += '"';
}

void LogTell(const httplib::Request& request, httplib::Response& response) {
    const std::string text = request.get_param_value("after");
    std::uint64_t after = 0;
    std::from_chars(text.data(), text.data() + text.size(), after);
    std::string json;
    Log& log = TheLog();
    {
        const std::lock_guard guard(log.lock);
        const auto behind = std::find_if(log.lines.begin(), log.lines.end(),
                                         [after](const LogLine& line) { return line.number > after; });
        const auto end = behind + std::min<std::ptrdiff_t>(LinesAtOnce, log.lines.end() - behind);
        const std::uint64_t next = behind == end ? log.next - 1 : std::prev(end)->number;
        json = "{\"next\":" + std::to_string(next) + ",\"lines\":[";
        for (auto line = behind; line != end; ++line) {
            if (line != behind) json += ',';
            json += "{\"number\":" + std::to_string(line->number) +
                    ",\"time\":" + std::to_string(line->time) + ",\"text\":";
            AppendQuoted(json, line->text);
            json += '}';
        }
    }
    response.set_content(json + "]}", "application/json");
}

void FileTell(const Console& console, const httplib::Request& request, httplib::Response& response) {
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
        .admits = [&console](const httplib::Request& request) { return FromHere(console, request); },
        .refusal = "this console serves its own page only\n"});
    console.server->set_payload_max_length(BodyBytesAtMost);
    console.server->set_default_headers({{"Content-Security-Policy", ContentPolicy},
                                         {"X-Content-Type-Options", "nosniff"},
                                         {"Referrer-Policy", "no-referrer"},
                                         {"Cross-Origin-Resource-Policy", "same-origin"},
                                         {"Cross-Origin-Opener-Policy", "same-origin"},
                                         {"Cache-Control", "no-cache"}});
    console.server->Post("/api", [&console](const httplib::Request& request, httplib::Response& response) {
        Pass(console, request, response);
    });
    console.server->Get("/log", LogTell);
    console.server->Get(".*", [&console](const httplib::Request& request, httplib::Response& response) {
        FileTell(console, request, response);
    });
}

/// The port as it stands behind a host; browsers leave the one out that links have by themselves.
std::string PortText(int port) {
    constexpr int LinksOwn = 80;
    return port == LinksOwn ? "" : ":" + std::to_string(port);
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

std::string LinkTo(const std::string& host, int port) {
    const bool bracketed = host.find(':') != std::string::npos;
    return "http://" + (bracketed ? "[" + host + "]" : host) + PortText(port);
}

std::filesystem::path ConsoleFolder() {
    return vorn::ExecutableFile().parent_path().parent_path() / "share" / "vornserver" / "console";
}

std::string ConsoleStart(const ConsoleAddress& address, const std::filesystem::path& folder, int servicePort,
                         std::string& fault) {
    static Console& console = *new Console;
    console.files = FilesRead(folder);
    if (!console.files.contains("/index.html")) {
        fault = "its page is not built; that takes Node and npm";
        return {};
    }
    const int port = Bind(console, address);
    if (port == 0) {
        fault = "no port is free at " + address.host;
        return {};
    }
    console.host = address.host;
    console.port = port;
    console.servicePort = servicePort;
    std::thread([] { console.server->listen_after_bind(); }).detach();
    const bool everywhere = address.host == "0.0.0.0" || address.host == "::";
    return LinkTo(everywhere ? "127.0.0.1" : address.host, port) + "/";
}

void ConsoleLog(std::string_view lines) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const std::int64_t time = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    Log& log = TheLog();
    const std::lock_guard guard(log.lock);
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        std::size_t shown = std::min(end, LineBytesAtMost);
        // Never inside a character.
        while (shown < end && shown > 0 && (static_cast<unsigned char>(lines[shown]) & 0xC0U) == 0x80U)
            --shown;
        log.lines.push_back({log.next++, time, std::string(lines.substr(0, shown))});
        if (log.lines.size() > LinesKept) log.lines.pop_front();
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
}
