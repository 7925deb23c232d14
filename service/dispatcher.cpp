#include "service/dispatcher.h"

#include <exception>
#include <string_view>

#include "commands/command_frame.h"
#include "service/exchange_log.h"
#include "service/verbs.h"

namespace vorn {

namespace {

/// No command, but logged as a write: clients know it as a word for moving elements.
constexpr std::string_view LoggedAsWrite = "MoveModNod";

void MishapTell(std::string& reply) {
    std::string().swap(reply);  // what was made of the reply is given back first
    try {
        reply = MishapReply;
    } catch (const std::exception&) {
        // An empty reply then.
    }
}

}  // namespace

bool WordWrites(std::string_view midHeader) {
    const VerbRow* verb = VerbFind(midHeader);
    return verb != nullptr ? verb->writes : midHeader == LoggedAsWrite || CommandWrites(midHeader);
}

void ServerDispatch(const std::string& midHeader, const std::string& midData, const std::string& midValue,
                    std::string& reply, const JsonValue* batch) {
    const VerbRow* verb = VerbFind(midHeader);
    const bool if_Set = WordWrites(midHeader);

    RtnLogRequest(if_Set, midHeader, midData);
    reply.clear();
    try {
        if (verb != nullptr) {
            verb->serve({midData, midValue, batch}, reply);
        } else {
            ProjectCommand(midHeader, midData, midValue, reply);
        }
    } catch (const std::exception&) {
        // Out of memory, most likely: this request fails, and the service goes on with the next.
        MishapTell(reply);
    }
    RtnLogResult(if_Set, midValue, reply);
}

}  // namespace vorn
