#include "standin/project.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "standin/control.h"
#include "standin/plant_step.h"
#include "standin/project_lock.h"
#include "standin/run_time.h"
#include "text/fixed_text.h"

namespace standin {

std::array<std::array<std::atomic<const ModuleType*>, ModuleCapacity>, SlotCount> publishedTypes{};

namespace {

std::array<Project, SlotCount>& Slots() {
    // Never destroyed: the engine's threads may work while the process ends.
    static auto& slots = *new std::array<Project, SlotCount>;
    return slots;
}

void TypePublish(const Project& project, int number, const ModuleType* type) {
    const int slot = SlotOf(project);
    if (slot < 0) return;  // a project that is being read, in no slot yet
    publishedTypes[slot][number].store(type, std::memory_order_relaxed);
}

/// The link counters of one end's port, null where the end is no port of a module or node.
int* PortCounter(Project& project, int kind, int number, int port) {
    Element* element = ElementFind(project, kind, number);
    if (element == nullptr || port < 0 || port >= PortsPerElement) return nullptr;
    return &element->linksAtPort[static_cast<std::size_t>(port)];
}

void CountLink(Project& project, const LinkSxCache& link, int step) {
    if (int* counter = PortCounter(project, link.F_Sx, link.F_Nb, link.F_PortNb)) *counter += step;
    if (int* counter = PortCounter(project, link.S_Sx, link.S_Nb, link.S_PortNb)) *counter += step;
}

void RemoveLinksAt(Project& project, int kind, int number) {
    for (std::size_t row = 0; row < project.links.rows.size(); ++row) {
        const LinkSxCache& link = project.links.rows[row];
        const bool upstream = link.F_Sx == kind && link.F_Nb == number;
        const bool downstream = link.S_Sx == kind && link.S_Nb == number;
        if (link.InUse && (upstream || downstream)) LinkRemove(project, static_cast<int>(row));
    }
}

/// What an item is in the cache sets of a new module; 0 where it is not told here.
struct ItemStart {
    std::string_view item;
    double value;
};
constexpr ItemStart ItemStarts[] = {{"Opening", 1.0}, {"Head", 20.0}, {"Power", 1.0}};

void Place(Element& element, int page, int x, int z, std::span<const std::string_view> items) {
    element.inUse = true;
    element.page = page;
    element.x = x;
    element.z = z;
    for (ElementValues& layer : element.layers) layer.items.assign(items.size(), 0.0);
    for (const ItemStart& start : ItemStarts) {
        const int row = ItemRow(items, start.item);
        for (int layer = CacheLayer0; row >= 0 && layer < LayerCount; ++layer) {
            element.layers[static_cast<std::size_t>(layer)].items[static_cast<std::size_t>(row)] =
                start.value;
        }
    }
}

void StructureChange(Project& project) {
    project.structure = project.shown = NextRevision();
}

void Identify(Element* element, IdentityIndex& index, int number, std::string_view text) {
    if (element == nullptr) return;
    std::string id(vorn::TextCut(text, IdentityBytes - 1));
    index.Add(id, number);
    if (id != element->instanceId) index.Remove(element->instanceId, number);
    element->instanceId = std::move(id);
}

}  // namespace

void IdentityIndex::Remove(const std::string& text, int number) {
    const auto found = numbers_.find(text);
    if (found == numbers_.end()) return;
    found->second.erase(number);
    if (found->second.empty()) numbers_.erase(found);
}

int IdentityIndex::Find(const std::string& text) const {
    const auto found = numbers_.find(text);
    // A set is empty where an addition ran out of memory.
    return found == numbers_.end() || found->second.empty() ? -1 : *found->second.begin();
}

std::vector<ProjectVariable> StandardVariables() {
    return {{.name = "GTemp"},
            {.name = "WAll"},
            {.name = "COP"},
            {.name = "GStep", .kind = VariableKind::Integer},
            {.name = "GSeries", .kind = VariableKind::RealArray},
            {.name = "GCounts", .kind = VariableKind::IntegerArray},
            {.name = "GOutside", .reals = {UsualOutside}},
            {.name = "GAlarms", .kind = VariableKind::Integer},
            {.name = "GTime"},
            {.name = "GStepSeconds", .reals = {StepSeconds}},
            {.name = "GRate", .reals = {UsualRate}},
            {.name = "GUntil"},
            {.name = "GLag"},
            {.name = "GScript", .kind = VariableKind::Integer}};
}

Project* ProjectFind(int slot) {
    if (slot < 0 || slot >= SlotCount) return nullptr;
    Project& project = Slots()[static_cast<std::size_t>(slot)];
    return project.name[0] == '\0' ? nullptr : &project;
}

Project* ProjectFind(std::string_view name) {
    if (name.empty()) return nullptr;
    for (Project& project : Slots()) {
        if (vorn::EqualWithoutCase(project.name, name)) return &project;
    }
    return nullptr;
}

int SlotOf(const Project& project) {
    for (int slot = 0; slot < SlotCount; ++slot) {
        if (&Slots()[slot] == &project) return slot;
    }
    return -1;
}

Project* ProjectMake(std::string_view name) {
    if (name.empty() || name.size() >= ProjectNameBytes || ProjectFind(name) != nullptr) return nullptr;
    for (Project& project : Slots()) {
        if (project.name[0] != '\0') continue;
        project = Project();
        project.modules.capacity = CapacityOf(ModuleTable);
        project.nodes.capacity = CapacityOf(NodeTable);
        project.links.capacity = CapacityOf(LinkTable);
        project.variables = StandardVariables();
        project.shown = NextRevision();
        // Nothing behind the lock asks for memory.
        if (!ProjectLockTake(SlotOf(project), name)) return nullptr;
        std::transform(name.begin(), name.end(), project.name, vorn::AsciiUpper);
        return &project;
    }
    return nullptr;
}

void ProjectFree(Project& project) {
    ProjectLockRelease(SlotOf(project));
    project = Project();
    NextRevision();
    TypesPublish(project);
}

void ProjectEmpty(Project& project) {
    project.modules.rows.clear();
    project.nodes.rows.clear();
    project.links.rows.clear();
    project.modules.lowestVacant = project.nodes.lowestVacant = project.links.lowestVacant = 0;
    project.moduleIdentities.Clear();
    project.nodeIdentities.Clear();
    StructureChange(project);
    TypesPublish(project);
}

void TypesPublish(const Project& project) {
    const std::vector<Module>& modules = project.modules.rows;
    const int slot = SlotOf(project);
    for (int number = 0; slot >= 0 && number < ModuleCapacity; ++number) {
        const bool inUse = number < static_cast<int>(modules.size()) && modules[number].inUse;
        publishedTypes[slot][number].store(inUse ? ModuleTypeFind(modules[number].type) : nullptr,
                                           std::memory_order_relaxed);
    }
}

Module* ModuleAdd(Project& project, int number, int type, int page, int x, int z) {
    const ModuleType* moduleType = ModuleTypeFind(type);
    if (moduleType == nullptr) return nullptr;
    Module made;
    Place(made, page, x, z, moduleType->items);
    made.type = type;
    Module* module = project.modules.Add(number, std::move(made));
    if (module == nullptr) return nullptr;
    StructureChange(project);
    TypePublish(project, number, moduleType);
    return module;
}

Node* NodeAdd(Project& project, int number, int kind, int page, int x, int z) {
    if (kind < 0 || kind >= NodeKindCount) return nullptr;
    Node made;
    Place(made, page, x, z, NodeItems());
    made.kind = kind;
    Node* node = project.nodes.Add(number, std::move(made));
    if (node == nullptr) return nullptr;
    StructureChange(project);
    return node;
}

bool LinkAdd(Project& project, int number, const LinkSxCache& link) {
    LinkSxCache made = link;
    made.InUse = true;
    if (project.links.Add(number, made) == nullptr) return false;
    CountLink(project, made, 1);
    StructureChange(project);
    return true;
}

void ModuleRemove(Project& project, int number) {
    const Module* module = project.modules.Find(number);
    if (module == nullptr) return;
    RemoveLinksAt(project, ModuleKind, number);
    project.moduleIdentities.Remove(module->instanceId, number);
    project.modules.Remove(number);
    StructureChange(project);
    TypePublish(project, number, nullptr);
    for (Module& other : project.modules.rows) {
        if (other.room == number) other.room = -1;
    }
}

void NodeRemove(Project& project, int number) {
    const Node* node = project.nodes.Find(number);
    if (node == nullptr) return;
    RemoveLinksAt(project, NodeKind, number);
    project.nodeIdentities.Remove(node->instanceId, number);
    project.nodes.Remove(number);
    StructureChange(project);
}

void LinkRemove(Project& project, int number) {
    const LinkSxCache* link = project.links.Find(number);
    if (link == nullptr) return;
    CountLink(project, *link, -1);
    project.links.Remove(number);
    StructureChange(project);
}

void ModuleIdentify(Project& project, int number, std::string_view text) {
    project.shown = NextRevision();
    Identify(project.modules.Find(number), project.moduleIdentities, number, text);
}

void NodeIdentify(Project& project, int number, std::string_view text) {
    project.shown = NextRevision();
    Identify(project.nodes.Find(number), project.nodeIdentities, number, text);
}

Element* ElementFind(Project& project, int kind, int number) {
    if (kind == ModuleKind) return project.modules.Find(number);
    if (kind == NodeKind) return project.nodes.Find(number);
    return nullptr;
}

int VariableFind(Project& project, std::string_view name) {
    const auto& variables = project.variables;
    const auto bears = [name](const ProjectVariable& variable) { return variable.name == name; };
    const auto known = project.variableRows.find(name);
    if (known != project.variableRows.end()) {
        const auto row = static_cast<std::size_t>(known->second);
        if (row < variables.size() && bears(variables[row])) return known->second;
        project.variableRows.erase(known);
    }
    const auto found = std::find_if(variables.begin(), variables.end(), bears);
    if (name.empty() || found == variables.end()) return -1;
    return project.variableRows[std::string(name)] = static_cast<int>(found - variables.begin());
}

const PortType* PortFind(Project& project, int module, int port) {
    const Module* found = project.modules.Find(module);
    if (found == nullptr) return nullptr;
    const auto ports = Catalogue()[static_cast<std::size_t>(found->type)].ports;
    return port >= 0 && port < static_cast<int>(ports.size()) ? &ports[static_cast<std::size_t>(port)]
                                                              : nullptr;
}

}  // namespace standin
