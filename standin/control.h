// What the engine asks before it works, so that tests can make it full, busy or unwilling. In service
// `service/control.cpp` answers that it is none of these; under test `levers/levers.cpp` does. The engine
// lock is held in each.

#pragma once

#include <string_view>

namespace standin {

enum TableKind { ModuleTable, NodeTable, LinkTable, TableKindCount };

/// Rows that a table of that kind has room for: at most those of `engine/vorn_records.h`.
int CapacityOf(TableKind table);

/// Whether the addition of a module, a node or a project that is asked for now is refused.
bool AdditionRefused();

/// Whether the view is being refreshed at this poll.
bool ViewBusy();

/// Whether the simulation's thread makes no steps.
bool SimulationKeptOff();

/// What `NameParsing` gives for a name.
struct DecodedName {
    int scope = 0;
    int type = 0;
    int slot = 0;
    int element = 0;
    int port = -1;
    int variable = 0;
};

/// Gives what a test defined for that name. False where it defined nothing.
bool NameDefined(std::string_view name, DecodedName& decoded);

}  // namespace standin
