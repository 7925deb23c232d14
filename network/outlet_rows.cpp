#include "network/outlet_rows.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

#include "elements/instance_id.h"
#include "network/project_check.h"

namespace vorn {

namespace {

/// The order of the rows.
std::tuple<int, int, int> KeyOf(const OutletRow& row) {
    return {row.link.F_Nb, row.link.F_PortNb, row.row};
}

bool SameOutlet(const OutletRow& left, const OutletRow& right) {
    return left.link.F_Nb == right.link.F_Nb && left.link.F_PortNb == right.link.F_PortNb;
}

/// The part of the rows in which those of `module` lie; the numbers on either side of the table share one.
std::size_t PartOf(int module) {
    return static_cast<std::size_t>(std::clamp(module, -1, ProjectCheck.ModuleNb) + 1);
}

auto PlaceAt(auto& outlets, std::size_t place) {
    return outlets.rows.begin() + static_cast<std::ptrdiff_t>(place);
}

template <typename Run>
void ForOutletRows(const RowMarks& consumed, Run run) {
    for (int row = 0; row < LinkRowCount(); ++row) {
        const LinkSxCache& link = LinkRowAt(row);
        if (consumed[static_cast<std::size_t>(row)] || !link.InUse) continue;
        if (link.F_Sx == ModuleKind && link.F_Type2) run(link, row);
    }
}

/// Lays the rows out by part, each part in row order.
void LayOut(OutletRows& outlets, const RowMarks& consumed) {
    outlets.parts.resize(PartOf(ProjectCheck.ModuleNb) + 2);
    ForOutletRows(consumed, [&](const LinkSxCache& link, int) { ++outlets.parts[PartOf(link.F_Nb) + 1]; });
    std::partial_sum(outlets.parts.begin(), outlets.parts.end(), outlets.parts.begin());
    outlets.rows.resize(outlets.parts.back());
    std::vector<std::size_t> next = outlets.parts;
    ForOutletRows(consumed, [&](const LinkSxCache& link, int row) {
        outlets.rows[next[PartOf(link.F_Nb)]++] = {link, row, NoPlace};
    });
}

/// The first place from `place` on whose row is not consumed.
std::size_t FirstLeft(OutletRows& outlets, std::size_t place) {
    std::vector<std::size_t>& left = outlets.left;
    std::size_t first = place;
    while (left[first] != first) first = left[first];
    while (left[place] != first) place = std::exchange(left[place], first);
    return first;
}

/// The first place of the module's rows whose key is not below `key`.
std::size_t PlaceFrom(const OutletRows& outlets, const std::tuple<int, int, int>& key) {
    const std::size_t part = PartOf(std::get<0>(key));
    const auto place =
        std::lower_bound(PlaceAt(outlets, outlets.parts[part]), PlaceAt(outlets, outlets.parts[part + 1]),
                         key, [](const OutletRow& row, const auto& wanted) { return KeyOf(row) < wanted; });
    return static_cast<std::size_t>(place - outlets.rows.begin());
}

}  // namespace

OutletRows OutletRowsGather(const RowMarks& consumed) {
    OutletRows outlets;
    LayOut(outlets, consumed);
    for (std::size_t part = 0; part + 1 < outlets.parts.size(); ++part) {
        std::sort(PlaceAt(outlets, outlets.parts[part]), PlaceAt(outlets, outlets.parts[part + 1]),
                  [](const OutletRow& left, const OutletRow& right) { return KeyOf(left) < KeyOf(right); });
    }
    outlets.placeOf.resize(consumed.size());
    for (std::size_t place = 0; place < outlets.rows.size(); ++place) {
        OutletRow& row = outlets.rows[place];
        const bool first = place == 0 || !SameOutlet(outlets.rows[place - 1], row);
        row.group = first ? place : outlets.rows[place - 1].group;
        outlets.placeOf[static_cast<std::size_t>(row.row)] = place;
    }
    outlets.left.resize(outlets.rows.size() + 1);
    std::iota(outlets.left.begin(), outlets.left.end(), std::size_t{0});
    return outlets;
}

std::size_t OutletGroupFind(const OutletRows& outlets, int module, int port) {
    const std::size_t place = PlaceFrom(outlets, {module, port, 0});
    if (place == outlets.rows.size()) return NoPlace;
    const LinkSxCache& link = outlets.rows[place].link;
    return link.F_Nb == module && link.F_PortNb == port ? place : NoPlace;
}

std::size_t OutletRowFrom(OutletRows& outlets, std::size_t group, int row) {
    const LinkSxCache& link = outlets.rows[group].link;
    const std::size_t place = FirstLeft(outlets, PlaceFrom(outlets, {link.F_Nb, link.F_PortNb, row}));
    return place < outlets.rows.size() && outlets.rows[place].group == group ? place : NoPlace;
}

void OutletRowConsume(OutletRows& outlets, std::size_t place) {
    outlets.left[place] = place + 1;
}

}  // namespace vorn
