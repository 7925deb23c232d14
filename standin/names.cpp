// The names of variables: PROJECT_MOD7_X, PROJECT_NOD3_X, PROJECT_IDENTITY_X and PROJECT_X, where X is an
// item, a port's value such as IM0_PRE, or a variable of the project. X_HELD tells whether the value X of an
// element is held. The project's part is compared without case.

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include "engine/vorn_core.h"
#include "standin/control.h"
#include "standin/held_values.h"
#include "standin/name_cache.h"
#include "standin/trace.h"
#include "standin/values.h"
#include "text/number_text.h"

using namespace standin;

namespace {

/// A port's value, such as IM0_PRE.
bool PortParse(std::string_view text, DecodedName& decoded) {
    const std::size_t end = text.find('_');
    if (!text.starts_with("IM") || end == std::string_view::npos) return false;
    if (!vorn::NumberFromDigits(text.substr(2, end - 2), decoded.port)) return false;
    if (decoded.port >= PortsPerElement) return false;

    const std::string_view word = text.substr(end + 1);
    if (word == PortSeriesWord) {
        decoded.type = static_cast<int>(VariableKind::RealArray);
        decoded.variable = 0;
        return true;
    }
    const std::span<const PortReal> reals(PortReals);
    const auto real =
        std::find_if(reals.begin(), reals.end(), [word](const PortReal& each) { return each.word == word; });
    decoded.variable = static_cast<int>(real - reals.begin());
    return real != reals.end();
}

/// A variable of the element that is decoded: a port's value, or an item of its table.
bool ElementParse(Project& project, std::string_view text, DecodedName& decoded) {
    if (ElementFind(project, decoded.scope, decoded.element) == nullptr) return false;
    if (PortParse(text, decoded)) return true;
    decoded.port = -1;
    decoded.variable = ItemRow(ItemsOf(project, decoded.scope, decoded.element), text);
    return decoded.variable >= 0;
}

/// The same, or whether such a value is held.
bool HoldableParse(Project& project, std::string_view text, DecodedName& decoded) {
    const bool held = text.ends_with(HeldSuffix);
    if (!held) return ElementParse(project, text, decoded);
    text.remove_suffix(HeldSuffix.size());
    if (!ElementParse(project, text, decoded)) return false;
    if (decoded.type != static_cast<int>(VariableKind::Real)) return false;
    decoded.variable = HeldVariable(decoded.port, decoded.variable);
    decoded.type = static_cast<int>(VariableKind::Integer);
    decoded.port = -1;
    return true;
}

bool ProjectVariableParse(Project& project, std::string_view text, DecodedName& decoded) {
    decoded.variable = VariableFind(project, text);
    if (decoded.variable < 0) return false;
    decoded.type = static_cast<int>(project.variables[static_cast<std::size_t>(decoded.variable)].kind);
    return true;
}

/// The open project of that name, sought first where the last one was found.
Project* ProjectOf(std::string_view name, int& slot) {
    static int last = 0;
    Project* const known = ProjectFind(last);
    if (known == nullptr || name != known->name) {
        const Project* const found = ProjectFind(name);
        if (found == nullptr) return nullptr;
        last = SlotOf(*found);
    }
    slot = last;
    return ProjectFind(slot);
}

/// A variable of an element by its identity, which may have any character: the shortest that fits counts.
bool IdentityParse(Project& project, std::string_view text, DecodedName& decoded) {
    for (std::size_t end = text.find('_'); end != std::string_view::npos; end = text.find('_', end + 1)) {
        const std::string identity(text.substr(0, end));
        for (const int kind : {ModuleKind, NodeKind}) {
            decoded = DecodedName{.scope = kind, .slot = decoded.slot};
            const IdentityIndex& index =
                kind == ModuleKind ? project.moduleIdentities : project.nodeIdentities;
            decoded.element = index.Find(identity);
            if (HoldableParse(project, text.substr(end + 1), decoded)) return true;
        }
    }
    return false;
}

bool NameDecode(std::string_view name, DecodedName& decoded) {
    const std::size_t projectEnd = name.find('_');
    if (projectEnd == std::string_view::npos) return false;
    Project* project = ProjectOf(name.substr(0, projectEnd), decoded.slot);
    return project != nullptr && VariableDecode(*project, name.substr(projectEnd + 1), decoded);
}

bool NameRead(std::string_view name, DecodedName& decoded) {
    if (NameCacheFind(name, decoded)) return true;
    const std::lock_guard guard(EngineLock());
    if (!NameDefined(name, decoded) && !NameDecode(name, decoded)) return false;
    NameCacheAdd(name, decoded);
    return true;
}

}  // namespace

bool standin::VariableDecode(Project& project, std::string_view text, DecodedName& decoded) {
    decoded = DecodedName{.slot = SlotOf(project)};
    std::string_view rest = text;
    if (ElementPrefixCut(rest, decoded.scope, decoded.element)) return HoldableParse(project, rest, decoded);
    return ProjectVariableParse(project, text, decoded) || IdentityParse(project, text, decoded);
}

void NameParsing(const char* name, int& scope, int& type, int& slot, int& element, int& port, int& variable,
                 bool& found) {
    Trace("NameParsing", name);
    DecodedName decoded;
    if (!NameRead(name, decoded)) return;
    scope = decoded.scope;
    type = decoded.type;
    slot = decoded.slot;
    element = decoded.element;
    port = decoded.port;
    variable = decoded.variable;
    found = true;
}
