// The catalog of standard pipes, ducts and reducers. Row order is part of it: a search takes the first match.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/vorn_records.h"

namespace vorn {

/// Sizes are in millimetres. The rows of one family bear one identity and are the models of that module type;
/// names are UTF-8 of at most 37 bytes.
struct FittingRow {
    std::int64_t OneID = 0;
    char Name[IdentityBytes] = {};
    double SizeX = 0.0;
    double SizeY = 0.0;  ///< equal to `SizeX` for a round section
};

struct ReducerRow {
    std::int64_t OneID = 0;
    char Name[IdentityBytes] = {};
    double StartX = 0.0;
    double StartY = 0.0;
    double EndX = 0.0;
    double EndY = 0.0;
};

inline constexpr std::size_t StraightRows = 88;
inline constexpr std::size_t ReducerRows = 213;

/// Cast-iron pipes 0 to 19, rectangular ducts 20 to 71, copper pipes 72 to 87.
extern const std::array<FittingRow, StraightRows> StraightCatalog;
/// Cast-iron reducers 0 to 53, duct reducers 54 to 197, copper reducers 198 to 212.
extern const std::array<ReducerRow, ReducerRows> ReducerCatalog;

}  // namespace vorn
