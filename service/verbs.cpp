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

/// Whether this server has the project open.
void Fdp(const std::string& midData, const std::string& /*midValue*/, std::string& reply) {
    reply = IsSlot(ProjectNameToID(midData.c_str())) ? "1" : "0";
}

/// Whether this server runs from the given directory tree.
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
