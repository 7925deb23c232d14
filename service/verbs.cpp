#include "service/verbs.h"

#include <algorithm>

#include "commands/put_verb.h"
#include "elements/slot.h"
#include "engine/vorn_core.h"
#include "service/server_root.h"
#include "text/ansi_to_utf8.h"
#include "variables/var_batch.h"
#include "variables/var_read.h"
#include "variables/var_write.h"

namespace vorn {

namespace {

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

constexpr VerbRow VerbTable[] = {
    {"Set", Set, true}, {"Get", Get, false}, {"Put", Put, true}, {"Fdp", Fdp, false}, {"Fph", Fph, false},
};

}  // namespace

std::span<const VerbRow> Verbs() {
    return VerbTable;
}

const VerbRow* VerbFind(std::string_view word) {
    const auto* row = std::find_if(std::begin(VerbTable), std::end(VerbTable),
                                   [word](const VerbRow& each) { return each.word == word; });
    return row == std::end(VerbTable) ? nullptr : row;
}

}  // namespace vorn
