#include "elements/grid.h"

#include <cmath>

#include "text/number_text.h"

namespace vorn {

bool GridFits(double position) {
    const double grid = std::trunc(position * PositionScale);
    return grid == IntFromReal(grid);
}

int GridFromPosition(double position) {
    return IntFromReal(position * PositionScale);
}

}  // namespace vorn
