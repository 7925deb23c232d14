#include "service/pipe_message.h"

#include "service/exchange.h"

namespace vorn {

namespace {

constexpr std::size_t ShortestSplit = 5;
constexpr char FieldEnd = '/';

/// Cuts the text before the first `/` off `rest`, or all of it where there is none.
std::string FieldCut(std::string& rest) {
    const std::size_t end = rest.find(FieldEnd);
    std::string field = rest.substr(0, end);
    rest.erase(0, end == std::string::npos ? end : end + 1);
    return field;
}

}  // namespace

void PipeMessageSplit(std::string message, std::string& reply, Front front) {
    if (message.size() < ShortestSplit) message.clear();
    const std::string midHeader = FieldCut(message);
    const std::string midData = FieldCut(message);
    ExchangeRun({.front = front}, midHeader, midData, message, reply);
}

}  // namespace vorn
