#include "elements/instance_id.h"

#include <algorithm>
#include <iterator>

#include "engine/vorn_core.h"
#include "text/number_text.h"

namespace vorn {

namespace {

/// By element kind, from 1.
constexpr std::string_view Prefixes[] = {"MOD", "NOD", "JMP", "LNK"};
constexpr std::size_t PrefixBytes = 3;
static_assert(std::size(Prefixes) == LinkKind && Prefixes[ModuleKind - 1] == "MOD" &&
              Prefixes[NodeKind - 1] == "NOD" && Prefixes[JumpKind - 1] == "JMP" &&
              Prefixes[LinkKind - 1] == "LNK");

}  // namespace

void InstanceIdParse(std::string_view text, int& kind, int& number) {
    kind = NoKind;
    number = -1;
    if (text.size() <= PrefixBytes) return;
    const auto* prefix = std::find(std::begin(Prefixes), std::end(Prefixes), text.substr(0, PrefixBytes));
    if (prefix == std::end(Prefixes)) return;
    kind = static_cast<int>(prefix - std::begin(Prefixes)) + 1;
    NumberFromDigits(text.substr(PrefixBytes), number);
}

std::string InstanceIdText(int kind, int number) {
    return std::string(Prefixes[kind - 1]) + std::to_string(number);
}

int InstanceIdResolve(int pjtnb, const char* id, int& number) {
    number = Module_FindInstanceID(pjtnb, id);
    if (number >= 0) return ModuleKind;
    number = Node_FindInstanceID(pjtnb, id);
    return number >= 0 ? NodeKind : NoKind;
}

}  // namespace vorn
