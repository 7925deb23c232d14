// Moving the shapes of a picture apart, so that none covers another.

#pragma once

#include <vector>

#include "standin/plant_layout.h"

namespace standin {

/// The least gap between any two shapes.
inline constexpr Point TightGap{10.0, 8.0};

/// How far apart the middles of two shapes are, in one direction or the other, when a gap lies between them.
Point ShapeReach(const PlantElement& one, const PlantElement& two, Point gap);

/// A shape on its way to a place of its own.
struct Settler {
    PlantElement* element;
    bool stays;  ///< the others give way to it
};

/// Moves shapes that overlap apart: by little pushes while that helps, then each that is left to the nearest
/// free place above or below. None overlaps afterwards, but for those that stay.
void Separate(const std::vector<Settler>& settlers);

}  // namespace standin
