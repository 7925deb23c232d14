#include "host/event_log.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "host/event_names.h"

namespace {

constexpr std::size_t KeptAtMost = 2000;
constexpr std::size_t AtOnce = 500;

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

struct Log {
    std::mutex lock{};                 ///< guards all below
    std::deque<vorn::Event> events{};  ///< the last of them has the number `count`
    std::uint64_t count = 0;
    std::uint64_t lost = 0;
    std::map<std::string, vorn::RunState> projects{};  ///< open ones
};

// Never destroyed: the process ends around its threads.
Log& TheLog() {
    static Log& log = *new Log;
    return log;
}

void Text(Writer& json, const char* key, std::string_view text) {
    json.Key(key);
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void Number(Writer& json, const char* key, std::int64_t number) {
    json.Key(key);
    json.Int64(number);
}

/// The text, and how many bytes are missing from it.
void Part(Writer& json, const char* key, const char* leftKey, const vorn::Excerpt& excerpt) {
    Text(json, key, excerpt.text);
    Number(json, leftKey, static_cast<std::int64_t>(excerpt.left));
}

std::int64_t Microseconds(std::chrono::nanoseconds time) {
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

void Tell(Writer& json, const vorn::ExchangeEvent& event) {
    Text(json, "kind", "exchange");
    Text(json, "front", NameOf(event.front));
    Text(json, "peer", event.peer);
    Text(json, "side", SideName(event.writes));
    Text(json, "word", vorn::WordText(event.word));
    Text(json, "sent", event.sentWord.text);
    Part(json, "name", "nameLeft", event.name);
    Text(json, "project", event.project);
    Text(json, "element", event.element);
    Part(json, "messages", "messagesLeft", event.messages);
    Part(json, "reply", "replyLeft", event.reply);
    Text(json, "replyKind", NameOf(event.replyKind));
    Text(json, "store", NameOf(event.store));
    Number(json, "waited", Microseconds(event.waited));
    Number(json, "inside", Microseconds(event.inside));
    Number(json, "slept", Microseconds(event.slept));
}

void Tell(Writer& json, const vorn::RunStateEvent& event) {
    Text(json, "kind", "state");
    Text(json, "project", event.project);
    Text(json, "state", NameOf(event.state));
    json.Key("byCommand");
    json.Bool(event.byCommand);
}

void Tell(Writer& json, const vorn::NoticeEvent& event) {
    Text(json, "kind", "notice");
    Text(json, "severity", NameOf(event.kind));
    Text(json, "text", event.text);
}

bool IsTrace(const vorn::Event& event) {
    const auto* const notice = std::get_if<vorn::NoticeEvent>(&event.what);
    return notice != nullptr && notice->kind == vorn::NoticeKind::Trace;
}

/// The lock is held.
void StateKeep(Log& log, const vorn::RunStateEvent& event) {
    if (event.state == vorn::RunState::Closed) {
        log.projects.erase(event.project);
    } else {
        log.projects[event.project] = event.state;
    }
}

void EventWrite(Writer& json, const vorn::Event& event, std::uint64_t number) {
    json.StartObject();
    Number(json, "number", static_cast<std::int64_t>(number));
    using std::chrono::milliseconds;
    const auto time = std::chrono::duration_cast<milliseconds>(event.time.time_since_epoch());
    Number(json, "time", time.count());
    std::visit([&json](const auto& what) { Tell(json, what); }, event.what);
    json.EndObject();
}

}  // namespace

void EventKeep(vorn::Event&& event) {
    if (IsTrace(event)) return;
    Log& log = TheLog();
    const std::lock_guard guard(log.lock);
    if (const auto* const state = std::get_if<vorn::RunStateEvent>(&event.what)) StateKeep(log, *state);
    log.events.push_back(std::move(event));
    ++log.count;
    if (log.events.size() > KeptAtMost) log.events.pop_front();
}

void EventLossKeep(const vorn::EventLoss& loss) {
    Log& log = TheLog();
    const std::lock_guard guard(log.lock);
    log.lost += loss.exchanges + loss.states + loss.notices;
}

std::string EventsJson(std::uint64_t after) {
    Log& log = TheLog();
    rapidjson::StringBuffer buffer;
    Writer json(buffer);
    const std::lock_guard guard(log.lock);
    const std::uint64_t dropped = log.count - log.events.size();
    const std::uint64_t begin = std::clamp(after, dropped, log.count);
    const std::uint64_t end = std::min<std::uint64_t>(begin + AtOnce, log.count);
    json.StartObject();
    Number(json, "next", static_cast<std::int64_t>(end));
    Number(json, "lost", static_cast<std::int64_t>(log.lost));
    json.Key("projects");
    json.StartObject();
    for (const auto& [project, state] : log.projects) Text(json, project.c_str(), NameOf(state));
    json.EndObject();
    json.Key("events");
    json.StartArray();
    for (std::uint64_t at = begin; at < end; ++at) {
        EventWrite(json, log.events[static_cast<std::size_t>(at - dropped)], at + 1);
    }
    json.EndArray();
    json.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}
