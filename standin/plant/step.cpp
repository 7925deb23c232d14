#include "standin/plant/step.h"

#include <algorithm>
#include <bit>

#include "standin/held_values.h"
#include "standin/notice.h"
#include "standin/plant/plant.h"
#include "standin/plant/project_values.h"
#include "standin/run_time.h"

namespace standin {

namespace {

/// The port at which a vessel tells what it holds.
constexpr std::size_t VesselOutlet = 1;

PlantRows RowsOf(const Project& project) {
    PlantRows rows;
    for (std::size_t number = 0; number < project.modules.rows.size(); ++number) {
        const Module& module = project.modules.rows[number];
        if (module.inUse) rows.modules.push_back({static_cast<int>(number), module.type, module.room});
    }
    for (std::size_t number = 0; number < project.nodes.rows.size(); ++number) {
        if (project.nodes.rows[number].inUse) rows.nodes.push_back(static_cast<int>(number));
    }
    std::copy_if(project.links.rows.begin(), project.links.rows.end(), std::back_inserter(rows.links),
                 [](const LinkSxCache& link) { return link.InUse && link.Type == PipeLink; });
    return rows;
}

const Module& ModuleOf(const Project& project, const Device& device) {
    return At(project.modules.rows, device.number);
}

double VesselTemperature(const Module& module) {
    const std::vector<PortValues>& ports = module.layers[RunLayer].ports;
    return ports.size() > VesselOutlet ? ports[VesselOutlet].temperature : StartTemperature;
}

PlantInputs InputsOf(const Project& project, const Layout& layout) {
    PlantInputs inputs;
    inputs.items.reserve(static_cast<std::size_t>(layout.valueCount));
    inputs.vessels.resize(layout.devices.size());
    for (std::size_t number = 0; number < layout.devices.size(); ++number) {
        const Module& module = ModuleOf(project, layout.devices[number]);
        const std::vector<double>& items = module.layers[RunLayer].items;
        inputs.items.insert(inputs.items.end(), items.begin(), items.end());
        if (IsVessel(layout.devices[number].type->role)) inputs.vessels[number] = VesselTemperature(module);
    }
    return inputs;
}

/// True where nobody has written the value since it was read; a NaN is what was read, too.
bool Untouched(double value, double read) {
    return std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(read);
}

/// The run values of an element's ports, at least as many as it has.
PortValues* PortsOf(Element& element, std::size_t count) {
    std::vector<PortValues>& ports = element.layers[RunLayer].ports;
    if (ports.size() < count) ports.resize(count);
    return ports.data();
}

void Write(PortValues& values, const PortState& state) {
    values.pressure = state.pressure;
    values.temperature = state.temperature;
    values.flow = state.flow;
}

void WriteDevices(Project& project, const Layout& layout, const PlantInputs& inputs,
                  const PlantOutputs& outputs) {
    for (std::size_t number = 0; number < layout.devices.size(); ++number) {
        const Device& device = layout.devices[number];
        Module& module = At(project.modules.rows, device.number);
        const bool vessel = IsVessel(device.type->role);
        const double now = vessel ? VesselTemperature(module) : 0.0;
        const bool holds = device.mouths[0] >= 0 || device.mouths[VesselOutlet] >= 0;
        PortValues* values = nullptr;
        for (std::size_t port = 0; port < device.points.size(); ++port) {
            if (device.points[port] == NoPoint && !(holds && port == VesselOutlet)) continue;
            if (values == nullptr) values = PortsOf(module, device.type->ports.size());
            Write(values[port], outputs.ports[number][port]);
        }
        if (holds && !Untouched(now, inputs.vessels[number])) values[VesselOutlet].temperature = now;
    }
    for (const ItemState& item : outputs.items) {
        const Device& device = At(layout.devices, item.device);
        double& value = At(At(project.modules.rows, device.number).layers[RunLayer].items, item.row);
        if (Untouched(value, At(inputs.items, device.firstValue + item.row))) value = item.value;
    }
}

void WriteNodes(Project& project, const Layout& layout, const PlantOutputs& outputs) {
    for (std::size_t number = 0; number < layout.nodes.size(); ++number) {
        std::vector<double>& items = At(project.nodes.rows, layout.nodes[number]).layers[RunLayer].items;
        const PortState& state = outputs.nodes[number];
        items[0] = state.pressure;
        items[1] = state.temperature;
        items[2] = state.flow;
    }
    for (std::size_t number = 0; number < layout.nodePorts.size(); ++number) {
        const NodePort& port = layout.nodePorts[number];
        Node& node = At(project.nodes.rows, At(layout.nodes, port.node));
        Write(PortsOf(node, PortsPerElement)[port.port], outputs.nodePorts[number]);
    }
}

}  // namespace

PlantKept::PlantKept() = default;
PlantKept::~PlantKept() = default;

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
        kept->plant.reset();  // none stands for the new structure before it is made of it
        kept->structure = project->structure;
        kept->run = project->run;
        const PlantRows rows = RowsOf(*project);
        lock.unlock();
        kept->plant = std::make_unique<Plant>(rows);
        lock.lock();
        if (changed()) return false;
    }
    const auto vain = [&] { return changed() || (cause == StepCause::Run && !Runs(*project)); };
    lock.unlock();
    ScriptStep(slot, seconds, kept->script);
    lock.lock();
    if (vain()) return false;
    if (kept->script != nullptr) kept->script->Apply(*project);
    const Layout& layout = kept->plant->GetLayout();
    PlantInputs inputs;
    {
        const ComputedInPlace computed(*project);
        inputs = InputsOf(*project, layout);
    }
    lock.unlock();

    // Kept again only behind the step: one that ran out of memory midway is made anew.
    std::unique_ptr<Plant> plant = std::move(kept->plant);
    const PlantOutputs outputs = plant->Step(inputs, seconds);
    kept->plant = std::move(plant);

    lock.lock();
    if (vain()) return false;
    {
        const ComputedInPlace computed(*project);
        WriteDevices(*project, layout, inputs, outputs);
        WriteNodes(*project, layout, outputs);
    }
    ProjectValuesWrite(*project, layout, outputs, seconds);
    TimeAdvance(*project, seconds);
    const std::string beginning = std::string("plant: ") + project->name + ": ";
    lock.unlock();
    for (const std::string& fault : outputs.faults) Notice(beginning + fault);
    return true;
}

}  // namespace standin
