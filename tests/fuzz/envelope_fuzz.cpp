// Bodies of `/api`, a line each, against one project: every command word and every member of `messages`.

#include "service/api_envelope.h"
#include "tests/fuzz/front.h"
#include "tests/fuzz/utf8.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    BeginWithProject();
    std::string_view input = Text(bytes, size);
    const bool clean = IsUtf8(input);
    while (!input.empty()) {
        std::string reply;
        vorn::ApiEnvelope(NextLine(input), reply);
        Require(!clean || IsUtf8(reply), "a reply to UTF-8 is UTF-8", reply);
    }
    Require(Ask("Fdp", "P").size() == 1, "the service goes on", "Fdp");
    return 0;
}
