#include "commands/command_frame.h"

#include <algorithm>
#include <iterator>

#include "commands/handlers.h"
#include "elements/instance_id.h"
#include "elements/slot.h"
#include "engine/vorn_core.h"

namespace vorn {

namespace {

/// What `name` must lead to before the command runs.
enum class Target { NewProject, Project, Element };

/// Which log takes the exchanges of a command.
enum class Log { Reads, Writes };

struct CommandRow {
    std::string_view word;
    Target target;
    Handler handler;
    Log log;
};

using enum Target;
using enum Log;

constexpr CommandRow CommandTable[] = {
    {"Create", NewProject, Create, Writes},
    {"Open", NewProject, Open, Writes},
    {"AddModule", Project, AddModule, Writes},
    {"AddNode", Project, AddNode, Writes},
    {"AddLink", Project, AddLink, Writes},
    {"NetAccess", Project, NetAccess, Writes},
    {"PjtInfoChk", Project, PjtInfoChk, Reads},
    {"PjtRun", Project, PjtRun, Writes},
    {"PjtPause", Project, PjtPause, Writes},
    {"PjtStep", Project, PjtStep, Writes},
    {"PjtStop", Project, PjtStop, Writes},
    {"PjtClose", Project, PjtClose, Writes},
    {"PjtClear", Project, PjtClear, Reads},
    {"PjtSent", Project, PjtSent, Writes},
    {"LuaSent", Project, LuaSent, Writes},
    {"PjtCacheToRun", Project, PjtCacheToRun, Writes},
    {"PjtRunToCache", Project, PjtRunToCache, Writes},
    {"ImportantGet", Project, ImportantGet, Reads},
    {"PjtPngGet", Project, PjtPngGet, Reads},
    {"PjtChartGet", Project, PjtChartGet, Reads},
    {"PjtCerGet", Project, PjtCerGet, Reads},
    {"PjtAddVar", Project, PjtAddVar, Reads},
    {"PjtDleVar", Project, PjtDleVar, Reads},
    {"DeleteMNL", Element, DeleteMNL, Writes},
    {"MoveMN", Element, MoveMN, Reads},
    {"PreGet", Element, PreGet, Reads},
    {"TempGet", Element, TempGet, Reads},
    {"FlowGet", Element, FlowGet, Reads},
    {"RoomGet", Element, RoomGet, Reads},
    {"VarInfoGet", Element, VarInfoGet, Reads},
    {"VarValueSet", Element, VarValueSet, Writes},
    {"VarCacheGet", Element, VarCacheGet, Reads},
    {"VarCacheSet", Element, VarCacheSet, Reads},
    {"RunValueGet", Element, RunValueGet, Reads},
    {"RunValueSet", Element, RunValueSet, Reads},
    {"CacheToRun", Element, CacheToRun, Writes},
    {"RunToCache", Element, RunToCache, Writes},
    {"ImportantSet", Element, ImportantSet, Writes},
};

const CommandRow* CommandFind(std::string_view word) {
    const auto* row = std::find_if(std::begin(CommandTable), std::end(CommandTable),
                                   [word](const CommandRow& each) { return each.word == word; });
    return row == std::end(CommandTable) ? nullptr : row;
}

bool Addressed(int midstate, int midnb) {
    return midnb >= 0 && midstate >= ModuleKind;
}

/// What stands behind the project in an element address. The scan does not go back after a cut, so an
/// identity that holds `_` itself is left whole where its first `_` falls on a place already passed.
std::string_view IdentityOf(std::string_view name) {
    for (std::size_t index = 0; index < name.size(); ++index) {
        if (name[index] == '_') name.remove_prefix(index + 1);
    }
    return name;
}

std::string CommandRun(const CommandRow* row, std::string name, const std::string& messages) {
    const auto served = [row](Target target) { return row != nullptr && row->target == target; };
    if (served(NewProject)) return row->handler({.name = name, .messages = messages});

    int pjtnb = -1;
    int midstate = -1;
    int midnb = -1;
    NameParsing_ModNod(name.c_str(), midstate, pjtnb, midnb);
    if (!IsSlot(pjtnb)) return "项目名称找不到(project Char error)";
    if (served(Project)) return row->handler({.name = name, .messages = messages, .pjtnb = pjtnb});

    if (!Addressed(midstate, midnb)) {
        name = IdentityOf(name);
        midstate = InstanceIdResolve(pjtnb, name.c_str(), midnb);
        if (!Addressed(midstate, midnb)) {
            return "无法识别name中的InstanceID或ConnectionID，请核对一下";
        }
    }
    if (served(Element)) {
        return row->handler(
            {.name = name, .messages = messages, .pjtnb = pjtnb, .midstate = midstate, .midnb = midnb});
    }
    return "the header is none";
}

}  // namespace

void ProjectCommand(const std::string& command, const std::string& name, const std::string& messages,
                    std::string& reply) {
    reply = CommandRun(CommandFind(command), name, messages);
}

int CommandCount() {
    return static_cast<int>(std::size(CommandTable));
}

int CommandIndex(std::string_view command) {
    const CommandRow* row = CommandFind(command);
    return row == nullptr ? -1 : static_cast<int>(row - std::begin(CommandTable));
}

std::string_view CommandWord(int index) {
    return CommandTable[index].word;
}

bool CommandWrites(std::string_view command) {
    const CommandRow* row = CommandFind(command);
    return row != nullptr && row->log == Writes;
}

}  // namespace vorn
