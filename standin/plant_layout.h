// Where the elements of a plant stand in its picture.

#pragma once

#include <string>
#include <vector>

#include "standin/svg.h"

namespace standin {

/// How an element is drawn. A connector is a pipe, a duct or a wire; a mark stands for what is not on the
/// page: a jump, or an element of another page.
enum class Shape { Device, Connector, Node, Mark };

/// Radius of a node's circle, in pixels; its label stands below.
inline constexpr double NodeRadius = 7.0;

/// Pixels that each shape fills, its label included, by shape.
inline constexpr Point ShapeSizes[] = {{112, 46}, {50, 16}, {60, 34}, {50, 16}};

struct PlantElement {
    Shape shape = Shape::Device;
    int kind = 0;  ///< of a node
    int x = 0;     ///< grid units
    int z = 0;
    std::string name{};  ///< of its type, in UTF-8
    std::string id{};    ///< by which clients know it
    Point at{};          ///< the middle of its shape, in pixels of the page
};

/// A link between two elements of one page, by their indices.
struct PlantLink {
    int type = 0;
    std::size_t from = 0;
    std::size_t to = 0;
};

struct PlantPage {
    int number = 0;
    std::vector<PlantElement> elements;
    std::vector<PlantLink> links;
    Point size{};  ///< pixels, margins included
};

inline Point ShapeSize(const PlantElement& element) {
    return ShapeSizes[static_cast<std::size_t>(element.shape)];
}

/// The point where the straight line from the middle of a shape to `toward` leaves it, label not counted.
Point ShapeEdge(const PlantElement& element, Point toward);

/// Places the elements of a page and sets its size. Devices and nodes keep the order and the proportions of
/// their grid positions, at the scale that the closest of them need; what would still overlap is moved apart.
/// The grid says little about connectors, which are often placed by a program: those stand in their links,
/// evenly between the elements that they join. The same page always comes out the same.
void PlantArrange(PlantPage& page);

}  // namespace standin
