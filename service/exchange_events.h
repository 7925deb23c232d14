// What happens in the service, for the program that it is part of: a record of each request when it is done,
// of each change of a project's run state, and of each report of the engine.
//
// Nothing is recorded before `EventsObserve`. The records wait in a queue of bounded size, so that no request
// ever waits for who takes them; what finds no room is counted.

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/notice.h"
#include "service/caller.h"
#include "service/words.h"

namespace vorn {

enum class ReplyKind : std::uint8_t {
    Ok,
    Refused,
    UnknownVariable,
    UnknownProject,
    UnknownElement,
    UnknownCommand,
    NoEnvelope,  ///< the body was no JSON object
    Mishap,
    ValueOrText
};

/// What became of the stores of a request, as far as the engine reports them.
enum class StoreEnd : std::uint8_t { NotAsked, Stored, Failed };

enum class RunState : std::uint8_t { Closed, Stopped, Running, Paused };

/// The beginning of a text of a client's or of a reply. Control characters and bytes that are no UTF-8 are
/// written as `\x0A`.
struct Excerpt {
    std::string text{};
    std::size_t bytes = 0;  ///< of the whole text
    std::size_t left = 0;   ///< of these, behind the beginning
};

/// The bytes that an excerpt begins with, before any are escaped: of names, and of messages and replies.
inline constexpr std::size_t NameExcerptBytes = 240;
inline constexpr std::size_t ReadExcerptBytes = 400;
inline constexpr std::size_t WriteExcerptBytes = 4000;

struct ExchangeEvent {
    Front front = Front::Http;
    ReplyKind replyKind = ReplyKind::ValueOrText;
    StoreEnd store = StoreEnd::NotAsked;
    bool writes = false;   ///< the side of the exchange log
    int word = OtherWord;  ///< an index of `WordText`
    std::string peer{};    ///< as in `Caller`
    Excerpt sentWord{};    ///< what came in the place of a word, where that is none
    Excerpt name{};
    std::string project{};  ///< that the name begins with, in upper case; empty where it begins with none
    std::string element{};  ///< what stands behind it
    Excerpt messages{};
    Excerpt reply{};
    std::chrono::nanoseconds waited{};  ///< for `DispatchLock`
    std::chrono::nanoseconds inside{};  ///< under the lock, with `slept`
    std::chrono::nanoseconds slept{};   ///< in rests that a command takes
};

struct RunStateEvent {
    std::string project{};
    RunState state = RunState::Closed;
    bool byCommand = false;  ///< false where the engine changed it by itself
};

struct NoticeEvent {
    NoticeKind kind = NoticeKind::Information;
    std::string text{};  ///< one line, escaped as an excerpt
};

struct Event {
    std::chrono::system_clock::time_point time{};
    std::variant<ExchangeEvent, RunStateEvent, NoticeEvent> what{};
};

/// What found no room since the last take.
struct EventLoss {
    std::uint64_t exchanges = 0;
    std::uint64_t excerpts = 0;  ///< exchanges whose record is there, without its texts
    std::uint64_t states = 0;
    std::uint64_t notices = 0;
};

/// Starts the records, once in a process; the engine's reports no longer go to standard error. From now on
/// one thread is to take them all the time.
void EventsObserve();

/// Waits that long for records, less when many wait. Puts those that came, in their order, into `events`, in
/// the place of what is there. Lets `std::bad_alloc` out: these records are then lost.
EventLoss EventsTake(std::vector<Event>& events, std::chrono::milliseconds wait);

}  // namespace vorn
