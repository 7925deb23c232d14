#include "standin/plant_step.h"

#include <algorithm>
#include <bit>

#include "platform/notice.h"
#include "standin/held_values.h"
#include "standin/project_values.h"
#include "standin/run_time.h"

namespace standin {

namespace {

/// The port whose temperature is that of a vessel's content.
constexpr std::size_t VesselOutlet = 1;

static_assert(FirstNodeOutlet == NodeInletCount && NodePorts == PortsPerElement);

PlantEnd EndOf(int kind, int number, int port) {
    using Kind = PlantEnd::Kind;
    const Kind known = kind == ModuleKind ? Kind::Module
                       : kind == NodeKind ? Kind::Node
                       : kind == JumpKind ? Kind::Jump
                                          : Kind::None;
    return {known, number, port};
}

PlantRows RowsOf(const Project& project) {
    PlantRows rows;
    for (std::size_t number = 0; number < project.modules.rows.size(); ++number) {
        const Module& module = project.modules.rows[number];
        if (!module.inUse) continue;
        rows.modules.push_back({static_cast<int>(number), ModuleTypeFind(module.type), module.room});
    }
    for (std::size_t number = 0; number < project.nodes.rows.size(); ++number) {
        if (project.nodes.rows[number].inUse) rows.nodes.push_back(static_cast<int>(number));
    }
    for (const LinkSxCache& link : project.links.rows) {
        if (!link.InUse || link.Type != PipeLink) continue;
        rows.links.push_back(
            {EndOf(link.F_Sx, link.F_Nb, link.F_PortNb), EndOf(link.S_Sx, link.S_Nb, link.S_PortNb)});
    }
    return rows;
}

bool IsVessel(const PlantType& type) {
    return type.role == Role::Tank || type.role == Role::Tower || type.role == Role::Receiver;
}

double VesselTemperature(const Module& module) {
    const std::vector<PortValues>& ports = module.layers[RunLayer].ports;
    return ports.size() > VesselOutlet ? ports[VesselOutlet].temperature : StartTemperature;
}

template <typename Row>
Row& RowAt(Table<Row>& table, int number) {
    return table.rows[static_cast<std::size_t>(number)];
}

PlantInputs InputsOf(Project& project, const PlantRows& rows) {
    const ComputedInPlace computed(project);
    PlantInputs inputs;
    inputs.outside = project.variables[OutsideRow].reals[0];
    inputs.vessels.resize(rows.modules.size());
    for (std::size_t index = 0; index < rows.modules.size(); ++index) {
        const Module& module = RowAt(project.modules, rows.modules[index].number);
        const std::vector<double>& items = module.layers[RunLayer].items;
        inputs.items.insert(inputs.items.end(), items.begin(), items.end());
        if (IsVessel(*rows.modules[index].type)) inputs.vessels[index] = VesselTemperature(module);
    }
    return inputs;
}

/// True where nobody has written the value since it was read; a NaN is what was read, too.
bool Untouched(double value, double read) {
    return std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(read);
}

void Write(PortValues& values, const PortState& state) {
    values.pressure = state.pressure;
    values.temperature = state.temperature;
    values.flow = state.flow;
}

/// Writes a port's run values. An element keeps none as long as all are zero.
void WritePort(Element& element, std::size_t count, std::size_t port, const PortState& state) {
    std::vector<PortValues>& ports = element.layers[RunLayer].ports;
    if (ports.size() <= port) {
        if (state.pressure == 0.0 && state.temperature == 0.0 && state.flow == 0.0) return;
        ports.resize(count);
    }
    Write(ports[port], state);
}

/// A vessel that nothing is linked to keeps no values, so that its content begins anew with the next link.
void ForgetUnlinked(Module& vessel) {
    std::vector<PortValues>& ports = vessel.layers[RunLayer].ports;
    const bool linked = std::any_of(vessel.linksAtPort.begin(), vessel.linksAtPort.end(),
                                    [](int links) { return links > 0; });
    const bool series = std::any_of(ports.begin(), ports.end(), [](const PortValues& port) {
        return port.series != decltype(port.series){};
    });
    if (!linked && !series) ports.clear();
}

void WriteModules(Project& project, const PlantRows& rows, const PlantInputs& inputs,
                  const PlantOutputs& outputs) {
    const ComputedInPlace computed(project);
    std::vector<std::size_t> firstItems;
    std::size_t firstItem = 0;
    for (std::size_t index = 0; index < rows.modules.size(); ++index) {
        const PlantType& type = *rows.modules[index].type;
        Module& module = RowAt(project.modules, rows.modules[index].number);
        firstItems.push_back(firstItem);
        firstItem += type.items.size();
        const double now = IsVessel(type) ? VesselTemperature(module) : 0.0;
        for (std::size_t port = 0; port < type.ports.size(); ++port) {
            WritePort(module, type.ports.size(), port, outputs.ports[index][port]);
        }
        if (IsVessel(type)) ForgetUnlinked(module);
        if (IsVessel(type) && !Untouched(now, inputs.vessels[index])) {
            module.layers[RunLayer].ports.resize(type.ports.size());
            module.layers[RunLayer].ports[VesselOutlet].temperature = now;
        }
    }
    for (const ItemState& item : outputs.items) {
        const auto index = static_cast<std::size_t>(item.module);
        const auto row = static_cast<std::size_t>(item.row);
        double& value = RowAt(project.modules, rows.modules[index].number).layers[RunLayer].items[row];
        if (Untouched(value, inputs.items[firstItems[index] + row])) value = item.value;
    }
}

void WriteNodes(Project& project, const PlantRows& rows, const PlantOutputs& outputs) {
    const ComputedInPlace computed(project);
    for (std::size_t index = 0; index < rows.nodes.size(); ++index) {
        Node& node = RowAt(project.nodes, rows.nodes[index]);
        const PortState& state = outputs.nodes[index];
        node.layers[RunLayer].items = {state.pressure, state.temperature, state.flow};
        for (PortValues& port : node.layers[RunLayer].ports) Write(port, {});
    }
    for (const NodePortState& port : outputs.nodePorts) {
        Node& node = RowAt(project.nodes, rows.nodes[static_cast<std::size_t>(port.node)]);
        WritePort(node, PortsPerElement, static_cast<std::size_t>(port.port), port.state);
    }
}

}  // namespace

bool PlantStep(int slot, double seconds, StepCause cause) {
    std::unique_lock lock(EngineLock());
    Project* project = ProjectFind(slot);
    if (project == nullptr) return false;
    if (project->plant == nullptr) project->plant = std::make_shared<PlantKept>();
    const std::shared_ptr<PlantKept> kept = project->plant;
    lock.unlock();
    const std::lock_guard stepping(kept->stepping);

    lock.lock();
    project = ProjectFind(slot);
    if (project == nullptr || project->plant != kept) return false;
    const auto changed = [&] {
        project = ProjectFind(slot);
        return project == nullptr || project->plant != kept || project->structure != kept->structure ||
               project->run != kept->run;
    };
    if (kept->plant == nullptr || changed()) {
        kept->plant.reset();  // there is none for the new structure before it is made of it
        kept->structure = project->structure;
        kept->run = project->run;
        kept->rows = RowsOf(*project);
        lock.unlock();
        kept->plant = std::make_unique<Plant>(kept->rows);
        lock.lock();
        if (changed()) return false;
    }
    const auto vain = [&] { return changed() || (cause == StepCause::Run && !Runs(*project)); };
    lock.unlock();
    ScriptStep(slot, seconds, kept->script);
    lock.lock();
    if (vain()) return false;
    if (kept->script != nullptr) kept->script->Apply(*project);
    const PlantRows& rows = kept->rows;
    const PlantInputs inputs = InputsOf(*project, rows);
    lock.unlock();

    // Kept again only behind the step: one that ran out of memory midway is made anew.
    std::unique_ptr<Plant> plant = std::move(kept->plant);
    const PlantOutputs outputs = plant->Step(inputs, seconds);
    kept->plant = std::move(plant);

    lock.lock();
    if (vain()) return false;
    WriteModules(*project, rows, inputs, outputs);
    WriteNodes(*project, rows, outputs);
    ProjectValuesWrite(*project, rows, outputs, seconds);
    TimeAdvance(*project, seconds);
    const std::string beginning = std::string("plant: ") + project->name + ": ";
    lock.unlock();
    for (const std::string& fault : outputs.faults) vorn::Notice(vorn::NoticeKind::Fault, beginning + fault);
    return true;
}

}  // namespace standin
