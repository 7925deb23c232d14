// Project variables that clients add and delete. A name has 1 to 63 of A to Z, a to z, 0 to 9 and `_`, and
// upper and lower case differ; one that reads as a variable of an element, such as MOD7_PL, is refused. The
// variables that every project has cannot be deleted.

#include <algorithm>
#include <string>

#include "engine/vorn_core.h"
#include "standin/trace.h"
#include "standin/values.h"
#include "text/fixed_text.h"

using namespace standin;

namespace {

constexpr std::size_t NameBytes = 63;

bool NameCharacter(char character) {
    return vorn::IsAsciiLetterOrDigit(character) || character == '_';
}

bool NameAllowed(std::string_view name) {
    if (name.empty() || name.size() > NameBytes) return false;
    if (!std::all_of(name.begin(), name.end(), NameCharacter)) return false;
    int kind = 0;
    int number = 0;
    return !ElementPrefixCut(name, kind, number);
}

/// A vacant row of the table, null when it is full.
ProjectVariable* VacantRow(std::vector<ProjectVariable>& variables) {
    const auto vacant = std::find_if(variables.begin(), variables.end(),
                                     [](const ProjectVariable& each) { return each.name.empty(); });
    if (vacant != variables.end()) return &*vacant;
    return variables.size() < ProjectVariableCapacity ? &variables.emplace_back() : nullptr;
}

}  // namespace

int ProjectVarAdd(const char* name, int zero, const char* variable) {
    Trace("ProjectVarAdd", name, zero, variable);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(name);
    if (project == nullptr || !NameAllowed(variable) || VariableFind(*project, variable) >= 0) return 0;
    ProjectVariable* row = VacantRow(project->variables);
    if (row == nullptr) return 0;
    *row = {.name = variable};
    NextRevision();
    return 1;
}

int ProjectVarDle(const char* name, const char* variable) {
    Trace("ProjectVarDle", name, variable);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(name);
    const int row = project == nullptr ? -1 : VariableFind(*project, variable);
    if (row < static_cast<int>(StandardVariableCount)) return 0;
    project->variables[static_cast<std::size_t>(row)] = {};
    project->variableRows.clear();
    NextRevision();
    return 1;
}
