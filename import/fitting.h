// The choice of a fitting for a connection, by the sizes of its two ports.

#pragma once

#include <cstdint>
#include <string_view>

#include "import/import_lists.h"

namespace vorn {

/// A module type and one of its models. The text lives as long as the library.
struct Fitting {
    std::int64_t oneId;
    std::string_view model;
};

/// The first row of the catalog that suits port sizes in metres: a straight one where both ends are of one
/// size, else a reducer, which leads from the larger end to the smaller. Where none does, "DN50铸铁管道".
Fitting FittingFor(const PortSize& start, const PortSize& end);

}  // namespace vorn
