// Slots of open projects.

#pragma once

#include "engine/vorn_records.h"

namespace vorn {

/// True for the number of a slot, whether it holds a project or not.
constexpr bool IsSlot(int pjtnb) {
    return pjtnb >= 0 && pjtnb < SlotCount;
}

}  // namespace vorn
