// Link expansion: makes a project in the engine out of the lists that were read from a document.

#pragma once

#include "import/import_lists.h"

namespace vorn {

/// Gives each connection of `lists` a device with a fitting that suits its port sizes. Asks nothing of the
/// engine, but for memory: it comes before the project is emptied, which so outlives a lack of it.
void GiveConnectionsDevices(ImportLists& lists);

/// Places all devices of `lists`, those of the connections too, as modules and nodes of slot `pjtnb`, ties
/// each pipe to its ends and each device to its room, and loads the parameters. What cannot be placed or
/// found is passed over without a word. The project is empty, and the lists are used up.
void LinkExpansion(int pjtnb, ImportLists lists);

}  // namespace vorn
