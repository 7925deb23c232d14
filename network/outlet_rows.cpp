#include "network/outlet_rows.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace vorn {

namespace {

constexpr int PortShift = 32;

/// Orders the rows of one module by port, and those of one port by place.
constexpr std::uint64_t KeyOf(int port, std::int32_t place) {
    return std::uint64_t{static_cast<std::uint32_t>(port)} << PortShift | static_cast<std::uint32_t>(place);
}

constexpr bool SamePort(std::uint64_t key, std::uint64_t other) {
    return key >> PortShift == other >> PortShift;
}

constexpr std::int32_t PlaceOf(std::uint64_t key) {
    return static_cast<std::int32_t>(key);
}

bool IsFromThroughPort(const LinkSxCache& link) {
    return link.F_Sx == ModuleKind && link.F_Type2;
}

int PartFind(const OutletRows& outlets, int module) {
    if (module >= 0 && module < outlets.moduleCount) return module;
    const auto other = outlets.others.find(module);
    return other == outlets.others.end() ? NoPart : other->second;
}

/// Sorts the keys of one module, and ties the rows of each of its ports together.
void PartSort(OutletRows& outlets, std::int32_t begin, std::int32_t end) {
    if (end - begin < 2) return;
    std::sort(outlets.keys.begin() + begin, outlets.keys.begin() + end);
    for (std::int32_t index = begin + 1; index < end; ++index) {
        const std::uint64_t before = outlets.keys[index - 1];
        const std::uint64_t key = outlets.keys[index];
        if (SamePort(before, key)) outlets.rows[PlaceOf(before)].later = PlaceOf(key);
    }
}

/// The first place from `place` on, of the same outlet, whose row is not consumed; shortens the next way.
std::int32_t LeftFrom(OutletRows& outlets, std::int32_t place) {
    std::int32_t left = place;
    while (left != NoPlace && outlets.rows[left].consumed) left = outlets.rows[left].later;
    while (place != left) place = std::exchange(outlets.rows[place].later, left);
    return left;
}

}  // namespace

void OutletRowsIndex(OutletRows& outlets) {
    // Counted two parts ahead, so that a part's entry is the next one's begin once it has its keys.
    std::vector<std::int32_t>& begins = outlets.begins;
    begins.assign(static_cast<std::size_t>(outlets.moduleCount) + 2, 0);
    for (OutletRow& row : outlets.rows) {
        if (!IsFromThroughPort(*row.link)) continue;
        row.part = PartFind(outlets, row.link->F_Nb);
        if (row.part == NoPart) {
            row.part = static_cast<std::int32_t>(begins.size()) - 2;
            outlets.others.emplace(row.link->F_Nb, row.part);
            begins.push_back(0);
        }
        ++begins[row.part + 2];
    }
    std::partial_sum(begins.begin(), begins.end(), begins.begin());
    outlets.keys.resize(begins.back());
    for (std::int32_t place = 0; place < static_cast<std::int32_t>(outlets.rows.size()); ++place) {
        const OutletRow& row = outlets.rows[place];
        if (row.part != NoPart) outlets.keys[begins[row.part + 1]++] = KeyOf(row.link->F_PortNb, place);
    }
    for (std::size_t part = 0; part + 2 < begins.size(); ++part)
        PartSort(outlets, begins[part], begins[part + 1]);
}

std::int32_t OutletRowFind(OutletRows& outlets, int module, int port, std::int32_t from) {
    const int part = PartFind(outlets, module);
    if (part == NoPart) return NoPlace;
    const auto end = outlets.keys.begin() + outlets.begins[part + 1];
    const auto first = std::lower_bound(outlets.keys.begin() + outlets.begins[part], end, KeyOf(port, 0));
    if (first == end || !SamePort(*first, KeyOf(port, 0))) return NoPlace;
    const std::int32_t place = LeftFrom(outlets, PlaceOf(*first));
    const bool onlyOne = first + 1 == end || !SamePort(first[1], *first);
    if (onlyOne || place == NoPlace || place >= from) return place;

    const auto next = std::lower_bound(first, end, KeyOf(port, from));
    if (next == end || !SamePort(*next, *first)) return place;
    const std::int32_t sooner = LeftFrom(outlets, PlaceOf(*next));
    return sooner == NoPlace ? place : sooner;
}

}  // namespace vorn
