#include "service/dispatcher.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <string_view>

#include "commands/command_frame.h"
#include "commands/put_verb.h"
#include "elements/slot.h"
#include "engine/vorn_core.h"
#include "service/exchange_log.h"
#include "service/server_root.h"
#include "text/ansi_to_utf8.h"
#include "variables/var_batch.h"
#include "variables/var_read.h"
#include "variables/var_write.h"

namespace vorn {

namespace {

/// Tells whether this server holds the project.
void Fdp(const std::string& midData, const std::string& /*midValue*/, std::string& reply) {
    reply = IsSlot(ProjectNameToID(midData.c_str())) ? "1" : "0";
}

/// Tells whether this server runs from the given directory tree.
void Fph(const std::string& midData, const std::string& /*midValue*/, std::string& reply) {
    reply = DirectoryHolds(DirectoryText(AnsiToUtf8(ServerRootGet())), midData) ? "1" : "0";
}

/// The name that stands for a batch in the place of a variable's.
constexpr std::string_view BatchName = "json";

void Set(const std::string& midData, const std::string& midValue, std::string& reply) {
    if (midData == BatchName) {
        VarSetByJson(midValue.c_str(), reply);
    } else {
        reply = VarSetByName(midData.c_str(), midValue.c_str());
    }
}

void Get(const std::string& midData, const std::string& midValue, std::string& reply) {
    if (midData == BatchName) {
        VarGetByJson(midValue.c_str(), reply);
    } else {
        reply = VarGetByName(midData.c_str());
    }
}

/// Drives a project by its name.
void Put(const std::string& midData, const std::string& midValue, std::string& reply) {
    reply = PutVerb(midData, midValue);
}

struct VerbRow {
    std::string_view word;
    void (*serve)(const std::string& midData, const std::string& midValue, std::string& reply);
    bool writes;  ///< its exchanges go to the log of writes
};

constexpr VerbRow VerbTable[] = {
    {"Set", Set, true}, {"Get", Get, false}, {"Put", Put, true}, {"Fdp", Fdp, false}, {"Fph", Fph, false},
};

/// No command, but logged as a write: clients know it as a word for moving elements.
constexpr std::string_view LoggedAsWrite = "MoveModNod";

const VerbRow* VerbFind(std::string_view word) {
    const auto* row = std::find_if(std::begin(VerbTable), std::end(VerbTable),
                                   [word](const VerbRow& each) { return each.word == word; });
    return row == std::end(VerbTable) ? nullptr : row;
}

void MishapTell(std::string& reply) {
    std::string().swap(reply);  // what was made of the reply is given back first
    try {
        reply = MishapReply;
    } catch (const std::exception&) {
        // An empty reply then.
    }
}

}  // namespace

void ServerDispatch(const std::string& midHeader, const std::string& midData, const std::string& midValue,
                    std::string& reply) {
    const VerbRow* verb = VerbFind(midHeader);
    const bool if_Set =
        verb != nullptr ? verb->writes : midHeader == LoggedAsWrite || CommandWrites(midHeader);

    RtnLogRequest(if_Set, midHeader, midData);
    reply.clear();
    try {
        if (verb != nullptr) {
            verb->serve(midData, midValue, reply);
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
