#include "import/fitting.h"

#include <algorithm>

#include "engine/vorn_type_ids.h"
#include "import/catalog.h"

namespace vorn {

namespace {

constexpr double Millimetres = 1000.0;
/// How far sizes may be apart, in millimetres: the two ends of a straight connection, and a reducer's.
constexpr double EndTolerance = 0.05;
/// The same for a straight row.
constexpr double StraightTolerance = 0.005;

constexpr Fitting DefaultFitting{PipeOneID, "DN50铸铁管道"};

bool Within(double size, double nominal, double tolerance) {
    return nominal + tolerance > size && size > nominal - tolerance;
}

PortSize InMillimetres(const PortSize& size) {
    return {.x = size.x * Millimetres, .y = size.y * Millimetres};
}

/// The first row of `catalog` that suits, else the default.
template <typename Catalog, typename Suits>
Fitting FirstOf(const Catalog& catalog, Suits suits) {
    const auto row = std::find_if(catalog.begin(), catalog.end(), suits);
    return row == catalog.end() ? DefaultFitting : Fitting{row->OneID, BoundedText(row->Name)};
}

}  // namespace

Fitting FittingFor(const PortSize& start, const PortSize& end) {
    const PortSize midPipeDir0 = InMillimetres(start);
    const PortSize midPipeDir1 = InMillimetres(end);
    const bool straight = Within(midPipeDir0.x, midPipeDir1.x, EndTolerance) &&
                          Within(midPipeDir0.y, midPipeDir1.y, EndTolerance);
    if (straight) {
        return FirstOf(StraightCatalog, [&](const FittingRow& row) {
            return Within(midPipeDir0.x, row.SizeX, StraightTolerance) &&
                   Within(midPipeDir0.y, row.SizeY, StraightTolerance);
        });
    }
    return FirstOf(ReducerCatalog, [&](const ReducerRow& row) {
        return Within(midPipeDir0.x, row.StartX, EndTolerance) &&
               Within(midPipeDir0.y, row.StartY, EndTolerance) &&
               Within(midPipeDir1.x, row.EndX, EndTolerance) && Within(midPipeDir1.y, row.EndY, EndTolerance);
    });
}

}  // namespace vorn
