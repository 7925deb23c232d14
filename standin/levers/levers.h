// What tests make the stand-in do: be full, refuse, be busy. The engine of the shipped library has none of
// it.

#pragma once

#include <string>

#include "standin/control.h"

namespace standin {

/// Sets the rows that a table of that kind has room for, in the open projects and in those made later.
void CapacitySet(TableKind table, int capacity);

/// The next addition of a module, a node or a project is refused.
void RefuseNextAddition();

/// The view is busy for that many polls of `GuiRef_Get`; a negative number is for ever.
void ViewBusySet(int polls);

/// Keeps the simulation's thread from stepping, so that a test sees only the steps that it makes itself.
void SimulationKeepOff(bool off);

/// Defines what `NameParsing` gives for a name, before it looks for a project's variables: so a test reaches
/// each operation of the store, also those that no variable of the stand-in leads to.
void NameDefine(const std::string& name, const DecodedName& decoded);

/// Back to the state after loading: no open project, nothing refused, full, busy or defined.
void EngineReset();

}  // namespace standin
