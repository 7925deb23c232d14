// Link expansion: makes a project in the engine out of the lists that were read from a document.

#pragma once

#include "import/import_lists.h"

namespace vorn {

/// Gives each connection of `lists` a device with a fitting that suits its port sizes, places all devices as
/// modules and nodes of slot `pjtnb`, ties each pipe to its ends and each device to its room, and loads the
/// parameters. What cannot be placed or found is passed over without a word. The project is empty, and the
/// lists are used up.
void LinkExpansion(int pjtnb, ImportLists lists);

}  // namespace vorn
