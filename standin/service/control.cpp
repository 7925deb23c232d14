// The answers of an engine in service: it has its full capacities, refuses nothing and is never busy.

#include "standin/control.h"

#include <array>

#include "engine/vorn_records.h"

namespace standin {

int CapacityOf(TableKind table) {
    constexpr std::array<int, TableKindCount> Capacities{ModuleCapacity, NodeCapacity, LinkCapacity};
    return Capacities[table];
}

bool AdditionRefused() {
    return false;
}

bool ViewBusy() {
    return false;
}

bool SimulationKeptOff() {
    return false;
}

bool NameDefined(std::string_view /*name*/, DecodedName& /*decoded*/) {
    return false;
}

}  // namespace standin
