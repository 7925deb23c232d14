#include "host/metrics.h"

#include <httplib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "host/process_figures.h"
#include "transport/http_server.h"

namespace {

constexpr std::size_t WordsAtMost = 64;
constexpr std::size_t WordBytesAtMost = 32;
constexpr std::string_view OtherWord = "other";

/// What a reply is, by its end: the host sees only whole lines.
struct ReplyKind {
    std::string_view ending;
    const char* kind;
};

constexpr ReplyKind ReplyKinds[] = {
    {" OK", "ok"},
    {" shibai", "refused"},
    {" Shibai", "refused"},
    {"none varname 找不到变量名称", "unknown_variable"},
    {"项目名称找不到(project Char error)", "unknown_project"},
    {"无法识别name中的InstanceID或ConnectionID，请核对一下", "unknown_element"},
    {"the header is none", "unknown_command"},
};
constexpr const char* OtherKind = "value_or_text";

struct Counters {
    std::mutex lock{};                                                         ///< guards all below
    std::map<std::pair<std::string, std::string>, std::uint64_t> exchanges{};  ///< by side and word
    std::map<std::string, std::uint64_t> words{};
    std::map<std::string, std::uint64_t> replies{};
    std::map<std::string, std::uint64_t> bytes{};  ///< by side
    std::uint64_t fragments = 0;
};

// Never destroyed: the process ends around its threads.
Counters& TheCounters() {
    static Counters& counters = *new Counters;
    return counters;
}

const std::chrono::system_clock::time_point started = std::chrono::system_clock::now();

/// Cuts the first word and the blanks behind it off.
std::string_view WordCut(std::string_view& text) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(text.find_first_not_of(' ', end), text.size()));
    return word;
}

bool IsCommandWord(std::string_view word) {
    const auto letter = [](char each) {
        return (each >= 'A' && each <= 'Z') || (each >= 'a' && each <= 'z');
    };
    return !word.empty() && word.size() <= WordBytesAtMost && std::all_of(word.begin(), word.end(), letter);
}

const char* KindOf(std::string_view line) {
    const auto* row = std::find_if(std::begin(ReplyKinds), std::end(ReplyKinds),
                                   [line](const ReplyKind& each) { return line.ends_with(each.ending); });
    return row == std::end(ReplyKinds) ? OtherKind : row->kind;
}

/// The lock is held.
void CountLine(Counters& counters, std::string_view line) {
    std::string_view rest = line;
    const std::string side(WordCut(rest));
    counters.bytes[side] += line.size() - side.size();
    std::string word(WordCut(rest));
    if (!IsCommandWord(word)) {
        ++counters.fragments;
        return;
    }
    if (counters.words.size() >= WordsAtMost && !counters.words.contains(word)) word = OtherWord;
    ++counters.words[word];
    ++counters.exchanges[{side, word}];
    ++counters.replies[KindOf(line)];
}

void Head(std::string& text, const char* name, const char* type, const char* help) {
    text.append("# HELP ").append(name).append(" ").append(help).append("\n# TYPE ").append(name);
    text.append(" ").append(type).append("\n");
}

void Sample(std::string& text, const std::string& name, std::uint64_t value) {
    text += name + " " + std::to_string(value) + "\n";
}

}  // namespace

void MetricsCount(std::string_view lines) {
    Counters& counters = TheCounters();
    const std::lock_guard guard(counters.lock);
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        CountLine(counters, lines.substr(0, end));
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
}

std::string MetricsText() {
    std::string text;
    Counters& counters = TheCounters();
    const std::lock_guard guard(counters.lock);
    Head(text, "vornserver_exchanges_total", "counter",
         "Exchanges seen in the log, by side and command word.");
    for (const auto& [key, count] : counters.exchanges) {
        Sample(text, "vornserver_exchanges_total{side=\"" + key.first + "\",command=\"" + key.second + "\"}",
               count);
    }
    Head(text, "vornserver_replies_total", "counter", "Replies of these exchanges, by kind.");
    for (const auto& [kind, count] : counters.replies) {
        Sample(text, "vornserver_replies_total{kind=\"" + kind + "\"}", count);
    }
    Head(text, "vornserver_log_bytes_total", "counter", "Bytes of the log as it is printed, by side.");
    for (const auto& [side, count] : counters.bytes) {
        Sample(text, "vornserver_log_bytes_total{side=\"" + side + "\"}", count);
    }
    Head(text, "vornserver_log_fragments_total", "counter",
         "Lines of the log that begin no exchange: of replies of several lines, and where the log was cut.");
    Sample(text, "vornserver_log_fragments_total", counters.fragments);
    Head(text, "process_resident_memory_bytes", "gauge", "Bytes in main memory.");
    Sample(text, "process_resident_memory_bytes", ResidentBytes());
    using std::chrono::seconds;
    Head(text, "process_start_time_seconds", "gauge", "Seconds from 1970 to the start of the program.");
    Sample(text, "process_start_time_seconds",
           static_cast<std::uint64_t>(std::chrono::floor<seconds>(started.time_since_epoch()).count()));
    Head(text, "vornserver_uptime_seconds", "gauge", "Seconds since the start of the program.");
    const auto up = std::chrono::system_clock::now() - started;
    Sample(text, "vornserver_uptime_seconds",
           static_cast<std::uint64_t>(std::chrono::floor<seconds>(up).count()));
    return text;
}

std::string MetricsStart(const ConsoleAddress& address, std::string& fault) {
    // Never destroyed: the process ends around its threads.
    constexpr int HeadMilliseconds = 5000;
    const int port = address.port == 0 ? MetricsPort : address.port;
    auto& server = *new vorn::HttpServer({
        .bodies = false,
        .headMilliseconds = HeadMilliseconds,
        .admits =
            [host = address.host, port](const httplib::Request& request) {
                return request.get_header_value_count("Host") == 1 &&
                       vorn::HostIsOwn(request.get_header_value("Host"), host, port);
            },
        .refusal = "these counters are served to those who name their host\n",
    });
    server.Get("/metrics", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(MetricsText(), "text/plain; version=0.0.4; charset=utf-8");
    });
    const std::string link = LinkTo(address.host, port);
    if (!server.Bind(address.host, port)) {
        fault = link + " is not free";
        return {};
    }
    std::thread([&server] { server.listen_after_bind(); }).detach();
    return link + "/metrics";
}
