// The rows of the snapshot that lead away from through ports, found by the outlet that they leave.

#pragma once

#include <cstddef>
#include <vector>

#include "engine/vorn_records.h"

namespace vorn {

/// A mark for each row of both link tables, set on a row that the walk need not look at any more.
using RowMarks = std::vector<bool>;

inline constexpr auto NoPlace = static_cast<std::size_t>(-1);

struct OutletRow {
    LinkSxCache link;   ///< a copy, which lies beside those that are read with it
    int row;            ///< its number, counted through both tables
    std::size_t group;  ///< the place of the first row of its outlet, which stands for the outlet
};

/// The rows by module, port and number; a place is an index into `rows`. Modules and ports are as the rows
/// tell them and may name nothing.
struct OutletRows {
    std::vector<OutletRow> rows{};
    std::vector<std::size_t> placeOf{};  ///< by number of the row; told only of rows that are here
    std::vector<std::size_t> parts{};    ///< by module: where its rows begin
    std::vector<std::size_t> left{};     ///< by place: from here to the place named all are consumed
};

/// Gathers the rows in use that are not marked.
OutletRows OutletRowsGather(const RowMarks& consumed);

/// The group of an outlet, `NoPlace` when no row leaves it.
std::size_t OutletGroupFind(const OutletRows& outlets, int module, int port);

/// The first place of a group whose row is not consumed and has a number of at least `row`; or `NoPlace`.
std::size_t OutletRowFrom(OutletRows& outlets, std::size_t group, int row);

/// Takes a row out of the search.
void OutletRowConsume(OutletRows& outlets, std::size_t place);

}  // namespace vorn
