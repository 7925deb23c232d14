#include "standin/held_values.h"

#include <algorithm>
#include <utility>

#include "standin/values.h"

namespace standin {

namespace {

// A held variable's number: the first, and for each port, items first, that many values.
constexpr int FirstHeld = 1 << 16;
constexpr int HeldPerPort = 1 << 8;

/// Items that a plant computes. The others are its inputs.
constexpr std::string_view ComputedItems[] = {"InsideTemperature", "BKT_TEMP", "Trip", "Alarm"};

bool IsComputed(std::span<const std::string_view> items, const HeldValue& held) {
    if (held.port >= 0) return true;
    const std::string_view item = items[static_cast<std::size_t>(held.variable)];
    return std::find(std::begin(ComputedItems), std::end(ComputedItems), item) != std::end(ComputedItems);
}

void SwapElement(Element& element, std::span<const std::string_view> items, bool all) {
    for (HeldValue& held : element.held) {
        double* const value = RunReal(element, held.port, held.variable);
        if (value != nullptr && (all || IsComputed(items, held))) std::swap(*value, held.own);
    }
}

}  // namespace

int HeldVariable(int port, int variable) {
    return FirstHeld + (port + 1) * HeldPerPort + variable;
}

HeldValue* HeldFind(Element& element, int port, int variable) {
    const auto found = std::find_if(element.held.begin(), element.held.end(), [&](const HeldValue& each) {
        return each.port == port && each.variable == variable;
    });
    return found == element.held.end() ? nullptr : &*found;
}

HeldValue* HeldFind(Element& element, int heldVariable) {
    const int number = heldVariable - FirstHeld;
    return number < 0 ? nullptr : HeldFind(element, number / HeldPerPort - 1, number % HeldPerPort);
}

void ValueHold(Project& project, Element& element, int heldVariable, bool held) {
    const int number = heldVariable - FirstHeld;
    if (number < 0) return;
    const int port = number / HeldPerPort - 1;
    const int variable = number % HeldPerPort;
    double* const value = RunReal(element, port, variable);
    HeldValue* const now = HeldFind(element, port, variable);
    if (value == nullptr || held == (now != nullptr)) return;
    if (held) {
        element.held.push_back({port, variable, *value});
        project.anyHeld = true;
        return;
    }
    *value = now->own;
    element.held.erase(element.held.begin() + (now - element.held.data()));
}

void HeldClear(Project& project) {
    if (!std::exchange(project.anyHeld, false)) return;
    for (Module& module : project.modules.rows) module.held.clear();
    for (Node& node : project.nodes.rows) node.held.clear();
}

void ComputedInPlace::Swap() {
    if (!project_.anyHeld) return;
    for (Module& module : project_.modules.rows) {
        if (!module.held.empty()) SwapElement(module, ModuleTypeFind(module.type)->items, false);
    }
    for (Node& node : project_.nodes.rows) {
        if (!node.held.empty()) SwapElement(node, NodeItems(), true);
    }
}

}  // namespace standin
