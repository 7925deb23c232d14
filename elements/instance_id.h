// Identities of elements: the kinds, the system's own form of an identity, and the search for one.

#pragma once

#include <string>
#include <string_view>

#include "engine/vorn_records.h"

namespace vorn {

/// Reads an identity of the system's own form: MOD, NOD, JMP or LNK and a decimal number. `kind` is 0 where
/// the text does not begin so, and keeps its value when the number is bad; `number` is -1 unless all of the
/// rest are digits of a number of 31 bits.
void InstanceIdParse(std::string_view text, int& kind, int& number);

/// The identity of the system's own form, such as `MOD12`. `kind` is 1 to 4.
std::string InstanceIdText(int kind, int number);

/// Finds the element of slot `pjtnb` that bears the identity `id`, of any form: gives 1 for a module, which
/// wins, 2 for a node, 0 for none; `number` is its number, or negative.
int InstanceIdResolve(int pjtnb, const char* id, int& number);

}  // namespace vorn
