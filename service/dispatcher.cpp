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

/// What a verb is asked.
struct Question {
    const std::string& midData;
    const std::string& midValue;
    const JsonValue* batch;  ///< see `ServerDispatch`
};

/// Answers whether this server has the project open.
void Fdp(const Question& question, std::string& reply) {
    reply = IsSlot(ProjectNameToID(question.midData.c_str())) ? "1" : "0";
}

/// Answers whether this server runs from the given directory tree.
void Fph(const Question& question, std::string& reply) {
    reply = DirectoryHolds(DirectoryText(AnsiToUtf8(ServerRootGet())), question.midData) ? "1" : "0";
}

void Set(const Question& question, std::string& reply) {
    if (question.midData != BatchName) {
        reply = VarSetByName(question.midData.c_str(), question.midValue.c_str());
    } else if (question.batch != nullptr) {
        VarSetByDocument(*question.batch, reply);
    } else {
        VarSetByJson(question.midValue.c_str(), reply);
    }
}

void Get(const Question& question, std::string& reply) {
    if (question.midData != BatchName) {
        reply = VarGetByName(question.midData.c_str());
    } else if (question.batch != nullptr) {
        VarGetByDocument(*question.batch, reply);
    } else {
        VarGetByJson(question.midValue.c_str(), reply);
    }
}

/// Drives a project by its name.
void Put(const Question& question, std::string& reply) {
    reply = PutVerb(question.midData, question.midValue);
}

struct VerbRow {
    std::string_view word;
    void (*serve)(const Question& question, std::string& reply);
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
                    std::string& reply, const JsonValue* batch) {
    const VerbRow* verb = VerbFind(midHeader);
    const bool if_Set =
        verb != nullptr ? verb->writes : midHeader == LoggedAsWrite || CommandWrites(midHeader);

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
