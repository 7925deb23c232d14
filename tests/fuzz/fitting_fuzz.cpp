// Port sizes, in metres, against a plain search of the catalog: an input is four numbers.

#include <cmath>
#include <cstring>

#include "import/catalog.h"
#include "import/fitting.h"
#include "tests/fuzz/front.h"

namespace {

using vorn::PortSize;

bool Near(double a, double b, double tolerance) {
    return b + tolerance > a && a > b - tolerance;
}

std::string PlainSearch(const PortSize& start, const PortSize& end) {
    const double x0 = start.x * 1000.0;
    const double y0 = start.y * 1000.0;
    const double x1 = end.x * 1000.0;
    const double y1 = end.y * 1000.0;
    if (Near(x0, x1, 0.05) && Near(y0, y1, 0.05)) {
        for (const auto& row : vorn::StraightCatalog) {
            if (Near(x0, row.SizeX, 0.005) && Near(y0, row.SizeY, 0.005)) return row.Name;
        }
    } else {
        for (const auto& row : vorn::ReducerCatalog) {
            if (Near(x0, row.StartX, 0.05) && Near(y0, row.StartY, 0.05) && Near(x1, row.EndX, 0.05) &&
                Near(y1, row.EndY, 0.05)) {
                return row.Name;
            }
        }
    }
    return vorn::StraightCatalog[5].Name;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    // The numbers as they are, and pulled close to a row of the catalog, where the tolerances decide.
    double sizes[4] = {};
    if (size < sizeof sizes + 2) return 0;
    std::memcpy(sizes, bytes, sizeof sizes);
    const PortSize start{.x = sizes[0], .y = sizes[1]};
    const PortSize end{.x = sizes[2], .y = sizes[3]};
    const auto& row = vorn::ReducerCatalog[bytes[sizeof sizes] % vorn::ReducerRows];
    const auto& straight = vorn::StraightCatalog[bytes[sizeof sizes + 1] % vorn::StraightRows];
    const auto off = [&](double millimetres, double by) {
        return (millimetres + std::remainder(by, 0.2)) / 1000;
    };
    const PortSize pairs[][2] = {{start, end},
                                 {{off(row.StartX, sizes[0]), off(row.StartY, sizes[1])},
                                  {off(row.EndX, sizes[2]), off(row.EndY, sizes[3])}},
                                 {{off(straight.SizeX, sizes[0]), off(straight.SizeY, sizes[1])},
                                  {off(straight.SizeX, sizes[2]), off(straight.SizeY, sizes[3])}}};
    for (const auto& pair : pairs) {
        const vorn::Fitting fitting = vorn::FittingFor(pair[0], pair[1]);
        Require(fitting.model == PlainSearch(pair[0], pair[1]), "the first row that suits", fitting.model);
    }
    return 0;
}
