#include "service/exchange.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <iterator>
#include <mutex>
#include <string_view>
#include <thread>

#include "platform/sleep.h"
#include "service/dispatcher.h"
#include "service/event_queue.h"
#include "service/run_states.h"
#include "service/service_locks.h"
#include "text/fixed_text.h"

namespace vorn {

namespace {

using Clock = std::chrono::steady_clock;
using std::string_view;

struct KnownReply {
    string_view text;
    ReplyKind kind;
};

constexpr KnownReply KnownReplies[] = {
    {"OK", ReplyKind::Ok},
    {"shibai", ReplyKind::Refused},
    {"Shibai", ReplyKind::Refused},
    {"none varname 找不到变量名称", ReplyKind::UnknownVariable},
    {"项目名称找不到(project Char error)", ReplyKind::UnknownProject},
    {"无法识别name中的InstanceID或ConnectionID，请核对一下", ReplyKind::UnknownElement},
    {"the header is none", ReplyKind::UnknownCommand},
    {"API调用格式错误", ReplyKind::NoEnvelope},
    {MishapReply, ReplyKind::Mishap},
};

ReplyKind KindOf(string_view reply) {
    const auto* row = std::find_if(std::begin(KnownReplies), std::end(KnownReplies),
                                   [reply](const KnownReply& each) { return each.text == reply; });
    return row == std::end(KnownReplies) ? ReplyKind::ValueOrText : row->kind;
}

Excerpt ExcerptOf(string_view text, std::size_t bytesAtMost) {
    const string_view beginning = text.size() <= bytesAtMost ? text : TextCut(text, bytesAtMost);
    return {std::string(beginning), text.size(), text.size() - beginning.size()};
}

struct Times {
    std::chrono::nanoseconds waited{};
    std::chrono::nanoseconds inside{};
    std::chrono::nanoseconds slept{};
};

void Record(const Caller& caller, string_view header, string_view name, string_view messages,
            string_view reply, const Times& times) {
    try {
        ExchangeEvent event;
        event.front = caller.front;
        event.peer = caller.peer;
        event.writes = WordWrites(header);
        event.word = WordIndex(header);
        if (event.word == OtherWord) event.sentWord = ExcerptOf(header, NameExcerptBytes);
        event.name = ExcerptOf(name, NameExcerptBytes);
        const std::size_t bytes = event.writes ? WriteExcerptBytes : ReadExcerptBytes;
        event.messages = ExcerptOf(messages, bytes);
        event.reply = ExcerptOf(reply, bytes);
        event.replyKind = KindOf(reply);
        event.store = StoreEndTake();
        event.waited = times.waited;
        event.inside = times.inside;
        event.slept = times.slept;
        EventAdd(std::move(event));
    } catch (const std::exception&) {
        EventLost();
    }
}

/// True for a word behind which a project may be in another state.
bool ChangesStates(string_view header) {
    return header != "Set" && header != "Get" && WordWrites(header);
}

std::atomic<bool> ends{false};

/// The threads of requests that came too late wait here for the end of the process.
void WaitForEnd(std::unique_lock<std::mutex>& dispatch) {
    dispatch.unlock();
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

}  // namespace

void ExchangeRun(const Caller& caller, const std::string& midHeader, const std::string& midData,
                 const std::string& midValue, std::string& reply, const JsonValue* batch) {
    if (!EventsObserved()) {
        const std::lock_guard guard(DispatchLock);
        ServerDispatch(midHeader, midData, midValue, reply, batch);
        return;
    }
    const Clock::time_point asked = Clock::now();
    std::unique_lock guard(DispatchLock);
    if (ends) WaitForEnd(guard);
    const Clock::time_point entered = Clock::now();
    const std::chrono::milliseconds slept = SleptByThread();
    StoreEndTake();
    ServerDispatch(midHeader, midData, midValue, reply, batch);
    Record(caller, midHeader, midData, midValue, reply,
           {entered - asked, Clock::now() - entered, SleptByThread() - slept});
    if (ChangesStates(midHeader)) RunStatesLook(true);
}

bool ExchangesEnd(std::chrono::milliseconds atMost) {
    constexpr std::chrono::milliseconds Pause{5};
    const Clock::time_point latest = Clock::now() + atMost;
    ends = true;
    for (; Clock::now() < latest; std::this_thread::sleep_for(Pause)) {
        if (const std::unique_lock guard(DispatchLock, std::try_to_lock); guard.owns_lock()) return true;
    }
    return false;
}

void ExchangeRefused(const Caller& caller, const std::string& text, const std::string& reply) {
    if (EventsObserved()) Record(caller, {}, {}, text, reply, {});
}

}  // namespace vorn
