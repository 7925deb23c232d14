// The serial entry: one line of a line transport that the host owns, reads and writes of variables alone.

#include <string>
#include <string_view>

#include "include/vorn_server.h"
#include "service/pipe_message.h"
#include "text/fixed_text.h"

namespace {

constexpr std::size_t ReplyBytes = 192;

}  // namespace

void ChuanKouServerThread(const char* const line, char* const reply) {
    const std::string_view midRead = line == nullptr ? std::string_view() : std::string_view(line);
    std::string midTcpRtn = "the header is none";
    if (midRead.starts_with("Set/") || midRead.starts_with("Get/")) {
        vorn::PipeMessageSplit(std::string(midRead), midTcpRtn);
    }
    vorn::TextCopy(reply, ReplyBytes, midTcpRtn.c_str());
}
