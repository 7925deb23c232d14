#include "service/exchange_log.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <new>
#include <string>

#include "include/vorn_server.h"
#include "service/service_locks.h"

namespace vorn {

namespace {

constexpr std::size_t KeptBytesAtMost = 20000;
constexpr std::size_t BytesAfterTrim = 2000;

struct LogSide {
    std::mutex& lock;    ///< guards `text`
    std::string text{};  ///< gathered since the last drain
    std::string out{};   ///< handed to the host; touched by the drain alone
    std::atomic<bool> news{false};
};

/// Both sides, made at the first use, without asking for memory, and never destroyed: exchanges may be logged
/// while the process ends.
LogSide& Side(bool if_Set) {
    struct Room {
        alignas(LogSide) std::byte bytes[sizeof(LogSide)];
    };
    static Room getRoom;
    static Room setRoom;
    static LogSide& Rtn_Get = *new (&getRoom) LogSide{.lock = RtnGetLock};
    static LogSide& Rtn_Set = *new (&setRoom) LogSide{.lock = RtnSetLock};
    return if_Set ? Rtn_Set : Rtn_Get;
}

/// The host reads the log as a text that ends at its first zero byte, which therefore must not come from a
/// client's texts.
std::string_view UpToZero(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

/// Appends the second half of an exchange and trims. Of a half that alone is over the limit only the bytes
/// that remain are copied.
void AppendTrimmed(std::string& text, std::string_view messages, std::string_view reply) {
    constexpr std::size_t SeparatorBytes = 2;
    if (text.size() + messages.size() + reply.size() + SeparatorBytes <= KeptBytesAtMost) {
        text.append(messages).append(" ").append(reply).append("\n");
        return;
    }
    const auto tail = [](std::string_view part) {
        return part.substr(part.size() - std::min(part.size(), BytesAfterTrim));
    };
    std::string kept(tail(text));
    kept.append(tail(messages)).append(" ").append(tail(reply)).append("\n");
    kept.erase(0, kept.size() - tail(kept).size());
    text = std::move(kept);  // and with the old text goes the room that a large name took
}

/// Appends to the text; where there is no memory for it the text stays as it was, and false.
template <typename Append>
bool AppendOrLeave(std::string& text, Append append) {
    const std::size_t before = text.size();
    try {
        append(text);
        return true;
    } catch (const std::exception&) {
        text.resize(before);
        return false;
    }
}

const char* Drain(LogSide& side) {
    std::string().swap(side.out);  // what was handed out may have taken much room
    {
        const std::lock_guard guard(side.lock);
        side.out.swap(side.text);
    }
    if (side.out.ends_with('\n')) side.out.pop_back();
    if (side.out.ends_with('\r')) side.out.pop_back();
    return side.out.c_str();
}

}  // namespace

void RtnLogRequest(bool if_Set, std::string_view header, std::string_view name) {
    header = UpToZero(header);
    name = UpToZero(name);
    LogSide& side = Side(if_Set);
    const std::lock_guard guard(side.lock);
    AppendOrLeave(side.text, [&](std::string& text) {
        text.reserve(text.size() + header.size() + name.size() + 2);
        text.append(header).append(" ").append(name).append(" ");
    });
}

void RtnLogResult(bool if_Set, std::string_view messages, std::string_view reply) {
    messages = UpToZero(messages);
    reply = UpToZero(reply);
    LogSide& side = Side(if_Set);
    const std::lock_guard guard(side.lock);
    const bool appended =
        AppendOrLeave(side.text, [&](std::string& text) { AppendTrimmed(text, messages, reply); });
    // The first half ends in a blank, which can be made a line's end without asking for memory.
    if (!appended && side.text.ends_with(' ')) side.text.back() = '\n';
    side.news = true;
}

}  // namespace vorn

bool RtnGet_SxGet() {
    return vorn::Side(false).news.exchange(false);
}
bool RtnSet_SxGet() {
    return vorn::Side(true).news.exchange(false);
}
const char* Rtn_Get_Get() {
    return vorn::Drain(vorn::Side(false));
}
const char* Rtn_Set_Get() {
    return vorn::Drain(vorn::Side(true));
}
