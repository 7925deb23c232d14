// Link expansion: makes a project in the engine out of the lists that were read from a document.

#pragma once

namespace vorn {

/// Gives each connection of slot `pjtnb` a device with a fitting that suits its port sizes, places all
/// devices as modules and nodes, ties each pipe to its ends and each device to its room, loads the
/// parameters, and empties the lists. What cannot be placed or found is passed over without a word. The
/// project is empty.
void LinkExpansion(int pjtnb);

}  // namespace vorn
