// VornVar: the values of the open projects. The value family works on the run layer. An element has reals and
// its ports have reals and one array. Its integers tell which of its reals are held. It has no further
// arrays: such a read leaves the caller's entries, and such a write does nothing. A number that is not finite
// is kept as 0.

#include "engine/vorn_var.h"

#include <algorithm>

#include "standin/held_values.h"
#include "standin/run_time.h"
#include "standin/trace.h"
#include "standin/values.h"

using namespace standin;

namespace {

std::span<const double> Entries(const double* values) {
    return {values, ArrayEntries};
}
std::span<const int> Entries(const int* values) {
    return {values, ArrayEntries};
}

// The lock is held for those that follow.

ProjectVariable* VariableAt(int slot, int variable) {
    Project* project = ProjectFind(slot);
    if (project == nullptr || variable < 0) return nullptr;
    const auto row = static_cast<std::size_t>(variable);
    return row < project->variables.size() ? &project->variables[row] : nullptr;
}

Element* ElementAt(int slot, int kind, int number) {
    Project* project = ProjectFind(slot);
    return project == nullptr ? nullptr : ElementFind(*project, kind, number);
}

/// The array of a port to be written; null for a port that names nothing.
std::array<double, ArrayEntries>* PortArrayAt(int slot, int kind, int number, int port) {
    Element* element = ElementAt(slot, kind, number);
    if (element == nullptr || port < 0 || port >= PortsPerElement) return nullptr;
    std::vector<PortValues>& ports = element->layers[RunLayer].ports;
    ports.resize(PortsPerElement);
    return &ports[static_cast<std::size_t>(port)].series;
}

bool PortRealExists(int variable) {
    return variable >= 0 && variable < static_cast<int>(PortReals.size());
}

// These take the lock.

double ElementGet(int slot, int kind, int number, int variable) {
    const std::lock_guard guard(EngineLock());
    Element* element = ElementAt(slot, kind, number);
    const double* value = element == nullptr ? nullptr : ItemAt(*element, RunLayer, variable);
    return value == nullptr ? 0.0 : *value;
}

void ElementSet(int slot, int kind, int number, int variable, double value) {
    const std::lock_guard guard(EngineLock());
    Element* element = ElementAt(slot, kind, number);
    double* const item = element == nullptr ? nullptr : ItemAt(*element, RunLayer, variable);
    if (item != nullptr) *item = Kept(value);
}

double PortGet(int slot, int kind, int number, int port, int variable) {
    const std::lock_guard guard(EngineLock());
    const Element* element = ElementAt(slot, kind, number);
    if (element == nullptr || !PortRealExists(variable)) return 0.0;
    return PortRead(*element, RunLayer, port).*PortReals[static_cast<std::size_t>(variable)].value;
}

void PortSet(int slot, int kind, int number, int port, int variable, double value) {
    const std::lock_guard guard(EngineLock());
    Element* element = ElementAt(slot, kind, number);
    double* const real = element == nullptr || port < 0 ? nullptr : RunReal(*element, port, variable);
    if (real != nullptr) *real = Kept(value);
}

void PortAryGet(int slot, int kind, int number, int port, double* values) {
    const std::lock_guard guard(EngineLock());
    const Element* element = ElementAt(slot, kind, number);
    if (element == nullptr) return;
    const auto& series = PortRead(*element, RunLayer, port).series;
    std::copy(series.begin(), series.end(), values);
}

void PortArySet(int slot, int kind, int number, int port, const double* values) {
    const std::lock_guard guard(EngineLock());
    auto* const found = PortArrayAt(slot, kind, number, port);
    if (found != nullptr) std::transform(values, values + ArrayEntries, found->begin(), Kept);
}

int HeldGet(int slot, int kind, int number, int variable) {
    const std::lock_guard guard(EngineLock());
    Element* element = ElementAt(slot, kind, number);
    return element != nullptr && HeldFind(*element, variable) != nullptr ? 1 : 0;
}

void HeldSet(int slot, int kind, int number, int variable, bool held) {
    const std::lock_guard guard(EngineLock());
    Element* element = ElementAt(slot, kind, number);
    if (element != nullptr) ValueHold(*ProjectFind(slot), *element, variable, held);
}

void LayerCopy(int slot, int kind, int number, int from, int to) {
    const std::lock_guard guard(EngineLock());
    Element* element = ElementAt(slot, kind, number);
    if (element == nullptr) return;
    if (std::min(from, to) < RunLayer || std::max(from, to) >= LayerCount) return;
    element->layers[static_cast<std::size_t>(to)] = element->layers[static_cast<std::size_t>(from)];
}

}  // namespace

// ---- Project ----

double GloGet(int slot, int variable) {
    Trace("GloGet", slot, variable);
    const std::lock_guard guard(EngineLock());
    const ProjectVariable* found = VariableAt(slot, variable);
    return found == nullptr ? 0.0 : found->reals.front();
}

int GloIntGet(int slot, int variable) {
    Trace("GloIntGet", slot, variable);
    const std::lock_guard guard(EngineLock());
    const ProjectVariable* found = VariableAt(slot, variable);
    return found == nullptr ? 0 : found->integers.front();
}

void GloAryGet(int slot, int variable, double* values) {
    Trace("GloAryGet", slot, variable);
    const std::lock_guard guard(EngineLock());
    const ProjectVariable* found = VariableAt(slot, variable);
    if (found != nullptr) std::copy(found->reals.begin(), found->reals.end(), values);
}

void GloIntAryGet(int slot, int variable, int* values) {
    Trace("GloIntAryGet", slot, variable);
    const std::lock_guard guard(EngineLock());
    const ProjectVariable* found = VariableAt(slot, variable);
    if (found != nullptr) std::copy(found->integers.begin(), found->integers.end(), values);
}

void w_GloSet(int slot, int variable, double value) {
    Trace("w_GloSet", slot, variable, value);
    const std::lock_guard guard(EngineLock());
    if (VariableAt(slot, variable) != nullptr) VariableStore(*ProjectFind(slot), variable, value);
}

void w_GloIntSet(int slot, int variable, int value) {
    Trace("w_GloIntSet", slot, variable, value);
    const std::lock_guard guard(EngineLock());
    if (ProjectVariable* found = VariableAt(slot, variable)) found->integers.front() = value;
}

void w_GloArySet(int slot, int variable, const double* values) {
    Trace("w_GloArySet", slot, variable, Entries(values));
    const std::lock_guard guard(EngineLock());
    ProjectVariable* found = VariableAt(slot, variable);
    if (found != nullptr) std::transform(values, values + ArrayEntries, found->reals.begin(), Kept);
}

void w_GloIntArySet(int slot, int variable, const int* values) {
    Trace("w_GloIntArySet", slot, variable, Entries(values));
    const std::lock_guard guard(EngineLock());
    ProjectVariable* found = VariableAt(slot, variable);
    if (found != nullptr) std::copy_n(values, ArrayEntries, found->integers.begin());
}

// ---- Modules ----

double ModGet(int slot, int module, int variable) {
    Trace("ModGet", slot, module, variable);
    return ElementGet(slot, ModuleKind, module, variable);
}

int ModIntGet(int slot, int module, int variable) {
    Trace("ModIntGet", slot, module, variable);
    return HeldGet(slot, ModuleKind, module, variable);
}

void ModAryGet(int slot, int module, int variable, double* /*values*/) {
    Trace("ModAryGet", slot, module, variable);
}

void ModIntAryGet(int slot, int module, int variable, int* /*values*/) {
    Trace("ModIntAryGet", slot, module, variable);
}

double ModPortGet(int slot, int module, int port, int variable) {
    Trace("ModPortGet", slot, module, port, variable);
    return PortGet(slot, ModuleKind, module, port, variable);
}

void ModPortAryGet(int slot, int module, int port, double* values) {
    Trace("ModPortAryGet", slot, module, port);
    PortAryGet(slot, ModuleKind, module, port, values);
}

void w_ModSet(int slot, int module, int variable, double value) {
    Trace("w_ModSet", slot, module, variable, value);
    ElementSet(slot, ModuleKind, module, variable, value);
}

void w_ModIntSet(int slot, int module, int variable, int value) {
    Trace("w_ModIntSet", slot, module, variable, value);
    HeldSet(slot, ModuleKind, module, variable, value != 0);
}

void w_ModArySet(int slot, int module, int variable, const double* values) {
    Trace("w_ModArySet", slot, module, variable, Entries(values));
}

void w_ModIntArySet(int slot, int module, int variable, const int* values) {
    Trace("w_ModIntArySet", slot, module, variable, Entries(values));
}

void w_ModPortSet(int slot, int module, int port, int variable, double value) {
    Trace("w_ModPortSet", slot, module, port, variable, value);
    PortSet(slot, ModuleKind, module, port, variable, value);
}

void w_ModPortArySet(int slot, int module, int port, const double* values) {
    Trace("w_ModPortArySet", slot, module, port, Entries(values));
    PortArySet(slot, ModuleKind, module, port, values);
}

// ---- Nodes ----

double NodGet(int slot, int node, int variable) {
    Trace("NodGet", slot, node, variable);
    return ElementGet(slot, NodeKind, node, variable);
}

int NodIntGet(int slot, int node, int variable) {
    Trace("NodIntGet", slot, node, variable);
    return HeldGet(slot, NodeKind, node, variable);
}

void NodAryGet(int slot, int node, int variable, double* /*values*/) {
    Trace("NodAryGet", slot, node, variable);
}

void NodIntAryGet(int slot, int node, int variable, int* /*values*/) {
    Trace("NodIntAryGet", slot, node, variable);
}

double NodPortGet(int slot, int node, int port, int variable) {
    Trace("NodPortGet", slot, node, port, variable);
    return PortGet(slot, NodeKind, node, port, variable);
}

void NodPortAryGet(int slot, int node, int port, double* values) {
    Trace("NodPortAryGet", slot, node, port);
    PortAryGet(slot, NodeKind, node, port, values);
}

void w_NodSet(int slot, int node, int variable, double value) {
    Trace("w_NodSet", slot, node, variable, value);
    ElementSet(slot, NodeKind, node, variable, value);
}

void w_NodIntSet(int slot, int node, int variable, int value) {
    Trace("w_NodIntSet", slot, node, variable, value);
    HeldSet(slot, NodeKind, node, variable, value != 0);
}

void w_NodArySet(int slot, int node, int variable, const double* values) {
    Trace("w_NodArySet", slot, node, variable, Entries(values));
}

void w_NodIntArySet(int slot, int node, int variable, const int* values) {
    Trace("w_NodIntArySet", slot, node, variable, Entries(values));
}

void w_NodPortSet(int slot, int node, int port, int variable, double value) {
    Trace("w_NodPortSet", slot, node, port, variable, value);
    PortSet(slot, NodeKind, node, port, variable, value);
}

void w_NodPortArySet(int slot, int node, int port, const double* values) {
    Trace("w_NodPortArySet", slot, node, port, Entries(values));
    PortArySet(slot, NodeKind, node, port, values);
}

// ---- Layers ----

void Pjt_Modu_PchToRun(int slot, int module, int set) {
    Trace("Pjt_Modu_PchToRun", slot, module, set);
    LayerCopy(slot, ModuleKind, module, CacheLayer0 + set, RunLayer);
}

void Pjt_Node_PchToRun(int slot, int node, int set) {
    Trace("Pjt_Node_PchToRun", slot, node, set);
    LayerCopy(slot, NodeKind, node, CacheLayer0 + set, RunLayer);
}

void Pjt_Modu_RunToPch(int slot, int module, int set) {
    Trace("Pjt_Modu_RunToPch", slot, module, set);
    LayerCopy(slot, ModuleKind, module, RunLayer, CacheLayer0 + set);
}

void Pjt_Node_RunToPch(int slot, int node, int set) {
    Trace("Pjt_Node_RunToPch", slot, node, set);
    LayerCopy(slot, NodeKind, node, RunLayer, CacheLayer0 + set);
}
