// What tests ask of the stand-in: to be full, to refuse, to be busy. Nothing of it is asked in service.

#pragma once

#include <string>
#include <string_view>

namespace standin {

enum TableKind { ModuleTable, NodeTable, LinkTable, TableKindCount };

/// Rows that a table of that kind has room for, in the open projects and in those made later. At first the
/// capacities of `engine/vorn_records.h`.
void CapacitySet(TableKind table, int capacity);
int CapacityOf(TableKind table);

/// The next addition of a module, a node or a project is refused.
void RefuseNextAddition();
/// Tells and clears the mark. The engine lock is held.
bool AdditionRefused();

/// The view stays busy for that many polls of `GuiRef_Get`; a negative number is for ever.
void ViewBusySet(int polls);

/// Keeps the simulation's thread from stepping, so that a test sees only the steps that it makes itself.
void SimulationKeepOff(bool off);
/// The engine lock is held.
bool SimulationKeptOff();

/// What `NameParsing` gives for a name of a test's own, before it looks for a project's variables: so a test
/// reaches each operation of the store, also those that no variable of the stand-in leads to.
struct DecodedName {
    int scope = 0;
    int type = 0;
    int slot = 0;
    int element = 0;
    int port = -1;
    int variable = 0;
};
void NameDefine(const std::string& name, const DecodedName& decoded);
/// Gives what was defined. The engine lock is held.
bool NameDefined(std::string_view name, DecodedName& decoded);

/// Back to the state after loading: no open project, nothing refused, full, busy or defined.
void EngineReset();

}  // namespace standin
