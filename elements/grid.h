// Positions: a client's position is a real number, the engine's grid counts in units of 1/50 of it.

#pragma once

namespace vorn {

/// Grid units in one unit of a client's position.
inline constexpr double PositionScale = 50.0;

/// True when the grid value of `position` fits signed 32 bits.
bool GridFits(double position);

/// The grid value of `position`: times `PositionScale`, cut towards zero and to the limits of 32 bits.
int GridFromPosition(double position);

}  // namespace vorn
