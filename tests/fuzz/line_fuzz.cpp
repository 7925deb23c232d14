// Requests of the pipe and lines of a serial link, and what the host prints of them: an input is lines, of
// which those that begin with `s` are serial ones.

#include <algorithm>
#include <cstring>

#include "host/event_text.h"
#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "service/pipe_message.h"
#include "tests/fuzz/front.h"
#include "tests/fuzz/utf8.h"

namespace {

constexpr std::size_t SerialReplyBytes = VORN_SERIAL_REPLY_BYTES;

void AskSerial(const std::string& line) {
    char reply[SerialReplyBytes + 1];
    std::fill(std::begin(reply), std::end(reply), '#');
    ChuanKouServerThread(line.c_str(), reply);
    Require(reply[SerialReplyBytes] == '#', "a serial reply stays in its room", line);
    Require(std::memchr(reply, 0, SerialReplyBytes) != nullptr, "a serial reply ends", line);
    Require(!IsUtf8(line) || IsUtf8(reply), "a serial reply to UTF-8 is UTF-8", reply);
}

/// Every line begins with its mark and holds nothing that a terminal would act on.
void CheckPrinted(const std::string& printed) {
    Require(IsUtf8(printed), "what is printed is UTF-8", printed);
    std::string_view rest = printed;
    while (!rest.empty()) {
        const std::string line = NextLine(rest);
        const bool marked =
            line.starts_with("read   ") || line.starts_with("write  ") || line.starts_with("state  ");
        Require(marked, "each line has its mark", line);
        const bool control = std::any_of(
            line.begin(), line.end(), [](char each) { return (each >= 0 && each < 0x20) || each == 0x7F; });
        Require(!control, "no control character is printed", line);
        const bool further = line.find("\xC2\x9B") != std::string::npos;
        Require(!further, "no control character of two bytes is printed", line);
    }
}

/// What the host would print of the records until now.
std::string Printed() {
    std::vector<vorn::Event> events;
    vorn::EventsTake(events, std::chrono::milliseconds(0));
    std::string lines;
    for (const vorn::Event& event : events) {
        if (const auto* exchange = std::get_if<vorn::ExchangeEvent>(&event.what))
            lines += ExchangeLine(*exchange);
        if (const auto* state = std::get_if<vorn::RunStateEvent>(&event.what)) lines += RunStateLine(*state);
    }
    return lines;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const bool observed = (vorn::EventsObserve(), true);
    static_cast<void>(observed);
    BeginWithProject();
    std::size_t requests = 0;
    std::string_view input = Text(bytes, size);
    std::string printed = Printed();
    printed.clear();  // what led to the project
    while (!input.empty()) {
        const std::string line = NextLine(input);
        ++requests;
        if (line.starts_with('s')) {
            AskSerial(line.substr(1));
        } else {
            std::string reply;
            vorn::PipeMessageSplit(line, reply);
        }
        if (line.ends_with('!')) printed += Printed();
    }
    printed += Printed();
    CheckPrinted(printed);
    std::size_t lines = 0;
    for (std::string_view rest = printed; !rest.empty();)
        lines += NextLine(rest).starts_with("state  ") ? 0 : 1;
    Require(lines == requests, "each request is one line", printed);
    return 0;
}
