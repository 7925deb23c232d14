// Create and Open: the commands that bring a project into the engine.

#include <string>

#include "commands/handlers.h"
#include "engine/vorn_core.h"
#include "text/project_name.h"

namespace vorn {

namespace {

bool MakeEmpty(const char* name) {
    return ProjectJsonAdd(name);
}

/// Opening a project without stored information creates it.
bool ReadOrMake(const char* name) {
    if (ProjectInfoRead(name) != 1) return ProjectJsonAdd(name);
    ProjectDBRead(name);
    return true;
}

std::string BringIn(const std::string& name, bool (*bring)(const char* name)) {
    std::string midPjtName0;
    if (!ProjectNameUpper(name, midPjtName0)) return "项目名称仅支持英文字母与数字";
    if (ProjectNameToID(midPjtName0.c_str()) >= 0) return "项目已打开";
    if (!bring(midPjtName0.c_str())) return "Shibai";
    Pipe_PjtListRef();
    PeojectListRef_CliSet(midPjtName0.c_str());
    return "OK";
}

}  // namespace

std::string Create(const Request& request) {
    return BringIn(request.name, MakeEmpty);
}

std::string Open(const Request& request) {
    return BringIn(request.name, ReadOrMake);
}

}  // namespace vorn
