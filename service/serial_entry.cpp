// The serial entry: one line of a line transport that the host owns, reads and writes of variables alone.

#include <exception>
#include <string>
#include <string_view>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "service/dispatcher.h"
#include "service/exchange.h"
#include "service/pipe_message.h"
#include "text/fixed_text.h"

namespace {

std::string Answer(std::string_view midRead) {
    std::string midTcpRtn;
    if (midRead.starts_with("Set/") || midRead.starts_with("Get/")) {
        vorn::PipeMessageSplit(std::string(midRead), midTcpRtn, vorn::Front::Serial);
    } else {
        midTcpRtn = "the header is none";
        vorn::ExchangeRefused({.front = vorn::Front::Serial}, std::string(midRead), midTcpRtn);
    }
    return midTcpRtn;
}

}  // namespace

void ChuanKouServerThread(const char* const line, char* const reply) {
    try {
        const std::string midTcpRtn = Answer(line == nullptr ? std::string_view() : line);
        vorn::TextCopy(reply, VORN_SERIAL_REPLY_BYTES, midTcpRtn.c_str());
    } catch (const std::exception&) {
        vorn::TextCopy(reply, VORN_SERIAL_REPLY_BYTES, vorn::MishapReply);
    }
}
