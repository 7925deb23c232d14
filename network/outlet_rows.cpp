#include "network/outlet_rows.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace vorn {

namespace {

constexpr int NoPart = -1;
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

}  // namespace

void OutletRowAdd(OutletRows& outlets, const LinkSxCache& link) {
    if (IsFromThroughPort(link) && PartFind(outlets, link.F_Nb) == NoPart) {
        outlets.others.emplace(link.F_Nb, outlets.moduleCount + static_cast<int>(outlets.others.size()));
    }
    outlets.rows.push_back({.link = &link});
}

void OutletRowsIndex(OutletRows& outlets) {
    const int parts = outlets.moduleCount + static_cast<int>(outlets.others.size());
    // Counted two parts ahead, so that a part's entry is the next one's begin once it has its keys.
    outlets.begins.assign(static_cast<std::size_t>(parts) + 2, 0);
    for (const OutletRow& row : outlets.rows) {
        if (IsFromThroughPort(*row.link)) ++outlets.begins[PartFind(outlets, row.link->F_Nb) + 2];
    }
    std::partial_sum(outlets.begins.begin(), outlets.begins.end(), outlets.begins.begin());
    outlets.keys.resize(outlets.begins.back());
    for (std::int32_t place = 0; place < static_cast<std::int32_t>(outlets.rows.size()); ++place) {
        const LinkSxCache& link = *outlets.rows[place].link;
        if (!IsFromThroughPort(link)) continue;
        outlets.keys[outlets.begins[PartFind(outlets, link.F_Nb) + 1]++] = KeyOf(link.F_PortNb, place);
    }
    for (int part = 0; part < parts; ++part)
        PartSort(outlets, outlets.begins[part], outlets.begins[part + 1]);
}

std::int32_t OutletRowFind(OutletRows& outlets, int module, int port, std::int32_t from) {
    const int part = PartFind(outlets, module);
    if (part == NoPart) return NoPlace;
    const std::uint64_t wanted = KeyOf(port, from);
    const auto end = outlets.keys.begin() + outlets.begins[part + 1];
    const auto key = std::lower_bound(outlets.keys.begin() + outlets.begins[part], end, wanted);
    if (key == end || !SamePort(*key, wanted)) return NoPlace;

    std::int32_t place = PlaceOf(*key);
    std::int32_t found = place;
    while (found != NoPlace && outlets.rows[found].consumed) found = outlets.rows[found].later;
    while (place != found) place = std::exchange(outlets.rows[place].later, found);  // shortens the next way
    return found;
}

}  // namespace vorn
