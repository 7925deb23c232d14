#include "standin/plant_separate.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace standin {

namespace {

constexpr int SeparateRounds = 60;
constexpr long SeparateChecks = 20'000'000;  ///< pairs looked at, over all rounds
constexpr long SettleChecks = 5'000'000;
constexpr double SettleStep = 6.0;
constexpr int SettleSteps = 20'000;

/// Settlers by the part of the page that they stand in. No shape is larger than a part.
class Parts {
  public:
    void Add(const Settler& settler) { parts_[PartOf(settler.element->at)].push_back(&settler); }
    /// Calls `visit` for each that may touch a shape at `at`, while it gives true, and tells whether it did.
    template <typename Visit>
    bool AllNear(Point at, Visit visit) const {
        const auto [column, row] = PartOf(at);
        for (long x = column - 1; x <= column + 1; ++x) {
            for (long y = row - 1; y <= row + 1; ++y) {
                const auto part = parts_.find({x, y});
                if (part == parts_.end()) continue;
                if (!std::all_of(part->second.begin(), part->second.end(), visit)) return false;
            }
        }
        return true;
    }

  private:
    using Part = std::pair<long, long>;
    static Part PartOf(Point at) {
        return {std::lround(at.x / (ShapeSizes[0].x + TightGap.x)),
                std::lround(at.y / (ShapeSizes[0].y + TightGap.y))};
    }
    std::map<Part, std::vector<const Settler*>> parts_;
};

/// How far two shapes reach into each other and the gap between them; one below 0 means not at all.
Point Overlap(const PlantElement& one, const PlantElement& two) {
    const Point reach = ShapeReach(one, two, TightGap);
    return {reach.x - std::abs(two.at.x - one.at.x), reach.y - std::abs(two.at.y - one.at.y)};
}

bool Overlaps(const PlantElement& one, const PlantElement& two) {
    constexpr double Touch = 0.01;
    const Point over = Overlap(one, two);
    return over.x > Touch && over.y > Touch;
}

/// Moves two shapes that overlap apart along the shorter way.
void PushApart(const Settler& one, const Settler& two) {
    const Point over = Overlap(*one.element, *two.element);
    double Point::*axis = over.x < over.y ? &Point::x : &Point::y;
    const double step = std::copysign(over.*axis, two.element->at.*axis - one.element->at.*axis);
    const double share = one.stays || two.stays ? 1.0 : 0.5;
    if (!one.stays) one.element->at.*axis -= step * share;
    if (!two.stays) two.element->at.*axis += step * share;
}

/// One round of moving apart all that overlap. Gives how many pairs were looked at; `moved` tells whether any
/// was moved.
long PushRound(const std::vector<Settler>& settlers, bool& moved) {
    long checks = 0;
    moved = false;
    Parts parts;
    for (const Settler& settler : settlers) {
        parts.AllNear(settler.element->at, [&](const Settler* other) {
            if ((!settler.stays || !other->stays) && Overlaps(*other->element, *settler.element)) {
                PushApart(*other, settler);
                moved = true;
            }
            return ++checks < SeparateChecks;
        });
        parts.Add(settler);
    }
    return checks;
}

/// Takes those that still overlap to the nearest free place above or below, one after the other, as long as
/// the looking takes no more than the pushing may.
void SettleRest(const std::vector<Settler>& settlers) {
    Parts parts;
    long checks = 0;
    const auto settle = [&parts, &checks](const Settler& settler) {
        Point& at = settler.element->at;
        const double height = at.y;
        const auto free = [&settler, &checks](const Settler* other) {
            ++checks;
            return !Overlaps(*other->element, *settler.element);
        };
        const int steps = settler.stays || checks >= SettleChecks ? 0 : SettleSteps;
        for (int step = 1; step < steps && !parts.AllNear(at, free); ++step) {
            const int away = (step + 1) / 2;
            at.y = height + (step % 2 == 0 ? away : -away) * SettleStep;
        }
        parts.Add(settler);
    };
    for (const bool staying : {true, false}) {
        for (const Settler& settler : settlers) {
            if (settler.stays == staying) settle(settler);
        }
    }
}

}  // namespace

Point ShapeReach(const PlantElement& one, const PlantElement& two, Point gap) {
    const Point oneSize = ShapeSize(one);
    const Point twoSize = ShapeSize(two);
    return {(oneSize.x + twoSize.x) / 2 + gap.x, (oneSize.y + twoSize.y) / 2 + gap.y};
}

void Separate(const std::vector<Settler>& settlers) {
    bool moved = true;
    long checks = 0;
    for (int round = 0; moved && round < SeparateRounds && checks < SeparateChecks; ++round) {
        checks += PushRound(settlers, moved);
    }
    if (moved) SettleRest(settlers);
}

}  // namespace standin
