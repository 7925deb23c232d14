// The values of an element: which variables it has, and where they stand. The engine lock is held.

#pragma once

#include <array>
#include <cmath>
#include <span>
#include <string_view>

#include "standin/control.h"
#include "standin/project.h"

namespace standin {

/// The reals of a port, in the order of their variable numbers. The word stands behind `IM0_` in the name.
struct PortReal {
    std::string_view word;
    double PortValues::*value;
};
inline constexpr std::array<PortReal, 3> PortReals{{
    {"PRE", &PortValues::pressure},
    {"TEMP", &PortValues::temperature},
    {"FLOW", &PortValues::flow},
}};

/// The word of a port's array.
inline constexpr std::string_view PortSeriesWord = "ARY";

/// Reads an element's number, decimal digits without leading zeros, so that an identity such as `MOD01` stays
/// free for clients. False, with `number` as it was, for any other text.
bool ElementNumberRead(std::string_view text, int& number);

/// Reads the element that a name's text behind the project begins with, such as `MOD7_`, and cuts it off.
/// False, with the text as it was, where the text begins otherwise.
bool ElementPrefixCut(std::string_view& text, int& kind, int& number);

/// Decodes the name of a variable of the project: what stands behind the project's name and `_` where clients
/// use it. False where there is no such variable.
bool VariableDecode(Project& project, std::string_view text, DecodedName& decoded);

/// What is kept of a number that a client sends: the number, 0 for one that is not finite.
inline double Kept(double value) {
    return std::isfinite(value) ? value : 0.0;
}

/// The items of the element of kind 1 or 2, by row; none where the numbers name no element.
std::span<const std::string_view> ItemsOf(Project& project, int kind, int number);

/// The value of the item in that row; null for a row that the element does not have.
double* ItemAt(Element& element, Layer layer, int row);

/// The run value of an item, or of a port's real for a port of 0 and above; null for one that the element
/// does not have. Makes room for the values of ports.
double* RunReal(Element& element, int port, int variable);

/// The values of a port to be read; all zero for a port number that names nothing.
const PortValues& PortRead(const Element& element, Layer layer, int port);

}  // namespace standin
