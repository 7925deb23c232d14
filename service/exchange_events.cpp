#include "service/exchange_events.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

#include "platform/visible.h"
#include "service/event_queue.h"
#include "service/run_states.h"
#include "service/service_locks.h"
#include "text/fixed_text.h"
#include "text/project_name.h"

namespace vorn {

namespace {

constexpr std::size_t ExchangesAtMost = 32768;
constexpr std::size_t StatesAtMost = 4096;
constexpr std::size_t NoticesAtMost = 16384;
constexpr std::size_t NoticeBytesAtMost = 4000;
constexpr std::size_t TextBytesAtMost = std::size_t{16} << 20U;
/// So many records wake who takes them.
constexpr std::size_t Many = ExchangesAtMost / 4;

struct Queue {
    std::mutex lock{};  ///< guards all below
    std::condition_variable many{};
    std::vector<Event> events{};
    std::size_t exchanges = 0;
    std::size_t states = 0;
    std::size_t notices = 0;
    std::size_t textBytes = 0;
    EventLoss loss{};
};

// Never destroyed: threads may record while the process ends.
Queue& TheQueue() {
    static Queue& queue = *new Queue;
    return queue;
}

std::atomic<bool> observed{false};
thread_local StoreEnd storeEnd = StoreEnd::NotAsked;

/// The lock is held. False, with one more in `lost`, where there is no room or no memory.
template <typename What>
bool Push(Queue& queue, What&& what, std::size_t& waiting, std::size_t atMost, std::uint64_t& lost) {
    try {
        if (waiting < atMost) {
            queue.events.push_back({std::chrono::system_clock::now(), std::forward<What>(what)});
            ++waiting;
            if (queue.events.size() == Many) queue.many.notify_one();
            return true;
        }
    } catch (const std::exception&) {
        // Counted as lost.
    }
    ++lost;
    return false;
}

std::size_t TextBytes(const ExchangeEvent& event) {
    return event.sentWord.text.size() + event.name.text.size() + event.messages.text.size() +
           event.reply.text.size();
}

void TextsDrop(ExchangeEvent& event) {
    for (Excerpt* each : {&event.sentWord, &event.name, &event.messages, &event.reply}) {
        std::string().swap(each->text);
        each->left = each->bytes;
    }
}

/// Takes what the engine reports. Calls that the look at the run states makes are nobody's.
void NoticeTake(NoticeKind kind, std::string_view line) {
    if (RunStatesLooking() && kind == NoticeKind::Trace) return;
    if (kind == NoticeKind::StoreFailed) storeEnd = StoreEnd::Failed;
    if (kind == NoticeKind::Stored && storeEnd == StoreEnd::NotAsked) storeEnd = StoreEnd::Stored;
    Queue& queue = TheQueue();
    const std::lock_guard guard(queue.lock);
    try {
        NoticeEvent event{kind, std::string(TextCut(line, NoticeBytesAtMost))};
        if (queue.textBytes + event.text.size() > TextBytesAtMost) {
            ++queue.loss.notices;
            return;
        }
        queue.textBytes += event.text.size();
        Push(queue, std::move(event), queue.notices, NoticesAtMost, queue.loss.notices);
    } catch (const std::exception&) {
        ++queue.loss.notices;
    }
}

/// True for the name that stands for many variables in the place of one.
bool NamesBatch(const ExchangeEvent& event) {
    const std::string_view word = WordText(event.word);
    return event.name.text == "json" && (word == "Set" || word == "Get");
}

/// The project and the rest of a name such as `PLANT1_MOD2`.
void NameSplit(ExchangeEvent& event) {
    const std::string& name = event.name.text;
    const std::size_t end = std::min(name.find('_'), name.size());
    if (NamesBatch(event) || !ProjectNameUpper(std::string_view(name).substr(0, end), event.project)) return;
    if (end < name.size()) event.element = name.substr(end + 1);
}

void Finish(ExchangeEvent& event) {
    NameSplit(event);
    for (Excerpt* each : {&event.sentWord, &event.name, &event.messages, &event.reply}) {
        each->text = Visible(each->text);
    }
    event.element = Visible(event.element);
    event.peer = Visible(event.peer);
}

void Finish(RunStateEvent& event) {
    event.project = Visible(event.project);
}

void Finish(NoticeEvent& event) {
    event.text = Visible(event.text);
}

}  // namespace

bool EventsObserved() {
    return observed.load(std::memory_order_relaxed);
}

void EventAdd(ExchangeEvent&& event) {
    Queue& queue = TheQueue();
    const std::lock_guard guard(queue.lock);
    if (queue.textBytes + TextBytes(event) > TextBytesAtMost) {
        TextsDrop(event);
        ++queue.loss.excerpts;
    }
    const std::size_t bytes = TextBytes(event);
    if (Push(queue, std::move(event), queue.exchanges, ExchangesAtMost, queue.loss.exchanges)) {
        queue.textBytes += bytes;
    }
}

void EventAdd(RunStateEvent&& event) {
    Queue& queue = TheQueue();
    const std::lock_guard guard(queue.lock);
    Push(queue, std::move(event), queue.states, StatesAtMost, queue.loss.states);
}

void EventLost() {
    Queue& queue = TheQueue();
    const std::lock_guard guard(queue.lock);
    ++queue.loss.exchanges;
}

StoreEnd StoreEndTake() {
    return std::exchange(storeEnd, StoreEnd::NotAsked);
}

void EventsObserve() {
    TheQueue().events.reserve(Many);
    NoticeSinkSet(NoticeTake);
    observed = true;
}

EventLoss EventsTake(std::vector<Event>& events, std::chrono::milliseconds wait) {
    Queue& queue = TheQueue();
    events.clear();
    EventLoss loss;
    {
        std::unique_lock guard(queue.lock);
        queue.many.wait_for(guard, wait, [&queue] { return queue.events.size() >= Many; });
        events.swap(queue.events);
        queue.exchanges = queue.states = queue.notices = queue.textBytes = 0;
        loss = std::exchange(queue.loss, {});
    }
    for (Event& event : events) {
        std::visit([](auto& what) { Finish(what); }, event.what);
    }
    // While a command runs its own look is to come.
    if (const std::unique_lock guard(DispatchLock, std::try_to_lock); guard.owns_lock()) RunStatesLook(false);
    return loss;
}

}  // namespace vorn
