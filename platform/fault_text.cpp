#include "platform/fault_text.h"

#include "platform/code_page.h"

namespace vorn {

std::string FaultText(const std::error_code& fault) {
    std::string text = Utf8FromCodePage(fault.message());
    text.resize(text.find_last_not_of(" \r\n") + 1);
    return text;
}

}  // namespace vorn
