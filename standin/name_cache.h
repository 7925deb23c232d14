// What names were decoded to, kept by each thread: clients ask for the same names again and again.

#pragma once

#include <cstdint>
#include <string_view>

#include "standin/control.h"

namespace standin {

/// Finds what `NameCacheAdd` of this thread kept for that name, as long as no project, element or project
/// variable came or went since. Needs no lock.
bool NameCacheFind(std::string_view name, DecodedName& decoded);

/// Keeps what a name was decoded to, in the place of another name where that is taken. Names that are very
/// short or long are not kept, and none where there is no memory. The engine lock is held since the decoding.
void NameCacheAdd(std::string_view name, const DecodedName& decoded);

}  // namespace standin
