#include "host/counters.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <map>
#include <mutex>
#include <vector>

#include "host/event_names.h"
#include "host/process_figures.h"

namespace {

struct Word {
    std::array<std::uint64_t, 2> exchanges{};  ///< by side: reads, writes
    std::chrono::nanoseconds waited{};
    std::chrono::nanoseconds inside{};
    std::chrono::nanoseconds slept{};
};

struct Counters {
    std::mutex lock{};  ///< guards all below
    std::vector<Word> words = std::vector<Word>(static_cast<std::size_t>(vorn::WordCount()) + 1);
    std::array<std::uint64_t, FrontCount> fronts{};
    std::array<std::uint64_t, ReplyKindCount> replies{};
    std::array<std::uint64_t, 2> requestBytes{};  ///< by side
    std::array<std::uint64_t, 2> replyBytes{};
    std::uint64_t stored = 0;
    std::uint64_t storesFailed = 0;
    std::array<std::uint64_t, NoticeKindCount> notices{};
    std::map<std::string, vorn::RunState> projects{};
    vorn::EventLoss lost{};
};

// Never destroyed: the process ends around its threads.
Counters& TheCounters() {
    static Counters& counters = *new Counters;
    return counters;
}

const std::chrono::system_clock::time_point started = std::chrono::system_clock::now();

/// The last place is that of all other words.
Word& WordOf(Counters& counters, int word) {
    return word == vorn::OtherWord ? counters.words.back()
                                   : counters.words.at(static_cast<std::size_t>(word));
}

void Head(std::string& text, const char* name, const char* type, const char* help) {
    text.append("# HELP ").append(name).append(" ").append(help).append("\n# TYPE ").append(name);
    text.append(" ").append(type).append("\n");
}

void Sample(std::string& text, const std::string& name, std::uint64_t value) {
    text += name + " " + std::to_string(value) + "\n";
}

/// NAME{LABEL="VALUE"}
std::string Labelled(const char* name, const char* label, std::string_view value) {
    return std::string(name).append("{").append(label).append("=\"").append(value).append("\"}");
}

void AppendExchanges(std::string& text, const Counters& counters) {
    constexpr const char* Name = "vornserver_exchanges_total";
    Head(text, Name, "counter", "Exchanges, by side and command word.");
    for (std::size_t word = 0; word < counters.words.size(); ++word) {
        for (const bool writes : {false, true}) {
            const std::uint64_t count = counters.words[word].exchanges[writes ? 1 : 0];
            if (count == 0) continue;
            const std::string_view command = vorn::WordText(static_cast<int>(word));
            text.append(Name).append("{side=\"").append(SideName(writes)).append("\",command=\"");
            Sample(text, std::string(command) + "\"}", count);
        }
    }
}

void AppendSeconds(std::string& text, const Counters& counters, const char* name, const char* help,
                   std::chrono::nanoseconds Word::*time) {
    Head(text, name, "counter", help);
    for (std::size_t word = 0; word < counters.words.size(); ++word) {
        const Word& row = counters.words[word];
        if (row.exchanges[0] + row.exchanges[1] == 0) continue;
        char seconds[40];
        std::snprintf(seconds, sizeof seconds, "%.6f", std::chrono::duration<double>(row.*time).count());
        text += Labelled(name, "command", vorn::WordText(static_cast<int>(word))) + " " + seconds + "\n";
    }
}

template <typename Kind, std::size_t Size>
void AppendKinds(std::string& text, const char* name, const char* label,
                 const std::array<std::uint64_t, Size>& counts) {
    for (std::size_t kind = 0; kind < Size; ++kind) {
        Sample(text, Labelled(name, label, NameOf(static_cast<Kind>(kind))), counts[kind]);
    }
}

void AppendBytes(std::string& text, const char* name, const char* help,
                 const std::array<std::uint64_t, 2>& bytes) {
    Head(text, name, "counter", help);
    for (const bool writes : {false, true}) {
        Sample(text, Labelled(name, "side", SideName(writes)), bytes[writes ? 1 : 0]);
    }
}

void AppendProjects(std::string& text, const Counters& counters) {
    constexpr const char* Name = "vornserver_projects";
    std::array<std::uint64_t, RunStateCount> states{};
    for (const auto& [project, state] : counters.projects) ++states.at(static_cast<std::size_t>(state));
    Head(text, Name, "gauge", "Open projects, by run state.");
    for (const auto state : {vorn::RunState::Stopped, vorn::RunState::Running, vorn::RunState::Paused}) {
        Sample(text, Labelled(Name, "state", NameOf(state)), states.at(static_cast<std::size_t>(state)));
    }
}

void AppendLost(std::string& text, const vorn::EventLoss& lost) {
    constexpr const char* Name = "vornserver_events_dropped_total";
    Head(text, Name, "counter",
         "Records that found no room and are in no other counter; texts: of records that are.");
    Sample(text, Labelled(Name, "kind", "exchange"), lost.exchanges);
    Sample(text, Labelled(Name, "kind", "text"), lost.excerpts);
    Sample(text, Labelled(Name, "kind", "state"), lost.states);
    Sample(text, Labelled(Name, "kind", "notice"), lost.notices);
}

void AppendProcess(std::string& text) {
    using std::chrono::seconds;
    Head(text, "process_resident_memory_bytes", "gauge", "Bytes in main memory.");
    Sample(text, "process_resident_memory_bytes", ResidentBytes());
    Head(text, "process_start_time_seconds", "gauge", "Seconds from 1970 to the start of the program.");
    Sample(text, "process_start_time_seconds",
           static_cast<std::uint64_t>(std::chrono::floor<seconds>(started.time_since_epoch()).count()));
    Head(text, "vornserver_uptime_seconds", "gauge", "Seconds since the start of the program.");
    const auto up = std::chrono::system_clock::now() - started;
    Sample(text, "vornserver_uptime_seconds",
           static_cast<std::uint64_t>(std::chrono::floor<seconds>(up).count()));
}

}  // namespace

void Count(const vorn::ExchangeEvent& event) {
    Counters& counters = TheCounters();
    const std::lock_guard guard(counters.lock);
    const std::size_t side = event.writes ? 1 : 0;
    Word& word = WordOf(counters, event.word);
    ++word.exchanges[side];
    word.waited += event.waited;
    word.inside += event.inside;
    word.slept += event.slept;
    ++counters.fronts.at(static_cast<std::size_t>(event.front));
    ++counters.replies.at(static_cast<std::size_t>(event.replyKind));
    counters.requestBytes[side] += event.messages.bytes;
    counters.replyBytes[side] += event.reply.bytes;
    if (event.store == vorn::StoreEnd::Stored) ++counters.stored;
    if (event.store == vorn::StoreEnd::Failed) ++counters.storesFailed;
}

void Count(const vorn::RunStateEvent& event) {
    Counters& counters = TheCounters();
    const std::lock_guard guard(counters.lock);
    if (event.state == vorn::RunState::Closed) {
        counters.projects.erase(event.project);
    } else {
        counters.projects[event.project] = event.state;
    }
}

void Count(const vorn::NoticeEvent& event) {
    Counters& counters = TheCounters();
    const std::lock_guard guard(counters.lock);
    ++counters.notices.at(static_cast<std::size_t>(event.kind));
}

void Count(const vorn::EventLoss& loss) {
    Counters& counters = TheCounters();
    const std::lock_guard guard(counters.lock);
    counters.lost.exchanges += loss.exchanges;
    counters.lost.excerpts += loss.excerpts;
    counters.lost.states += loss.states;
    counters.lost.notices += loss.notices;
}

std::string CountersText() {
    std::string text;
    Counters& counters = TheCounters();
    const std::lock_guard guard(counters.lock);
    AppendExchanges(text, counters);
    Head(text, "vornserver_front_exchanges_total", "counter", "Exchanges, by way in.");
    AppendKinds<vorn::Front>(text, "vornserver_front_exchanges_total", "front", counters.fronts);
    Head(text, "vornserver_replies_total", "counter", "Replies, by kind.");
    AppendKinds<vorn::ReplyKind>(text, "vornserver_replies_total", "kind", counters.replies);
    AppendBytes(text, "vornserver_request_bytes_total", "Bytes of messages, by side.", counters.requestBytes);
    AppendBytes(text, "vornserver_reply_bytes_total", "Bytes of replies, by side.", counters.replyBytes);
    AppendSeconds(text, counters, "vornserver_lock_wait_seconds_total",
                  "Time that exchanges waited for others, by command word.", &Word::waited);
    AppendSeconds(text, counters, "vornserver_exchange_seconds_total",
                  "Time that exchanges took behind that, by command word.", &Word::inside);
    AppendSeconds(text, counters, "vornserver_prescribed_wait_seconds_total",
                  "Of that, the rests that commands take, by command word.", &Word::slept);
    Head(text, "vornserver_stores_total", "counter", "Exchanges that stored a project, by result.");
    Sample(text, Labelled("vornserver_stores_total", "result", "stored"), counters.stored);
    Sample(text, Labelled("vornserver_stores_total", "result", "failed"), counters.storesFailed);
    AppendProjects(text, counters);
    Head(text, "vornserver_notices_total", "counter", "Reports of the engine, by kind.");
    AppendKinds<vorn::NoticeKind>(text, "vornserver_notices_total", "kind", counters.notices);
    AppendLost(text, counters.lost);
    AppendProcess(text);
    return text;
}
