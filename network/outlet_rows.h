// The rows that the walk has to consume, and the search for those that leave a module's outlet.
//
// A place is an index into `rows`; the rows stand in the order in which the passes take them.

#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "engine/vorn_records.h"

namespace vorn {

inline constexpr std::int32_t NoPlace = -1;
inline constexpr std::int32_t NoBranch = -1;
inline constexpr std::int32_t NoPart = -1;

struct OutletRow {
    const LinkSxCache* link;
    std::int32_t later = NoPlace;     ///< a row behind it of the same outlet; all between them are consumed
    std::int32_t waiting = NoBranch;  ///< the branch that came last to wait for this row
    std::int32_t part = NoPart;       ///< where its key is; no key where it comes from no through port
    bool consumed = false;
};

/// Modules and ports are as the rows tell them and may name nothing.
struct OutletRows {
    int moduleCount;  ///< of the snapshot
    std::vector<OutletRow> rows{};
    std::unordered_map<int, int> others{};  ///< modules outside the table, and the parts that they are given
    std::vector<std::int32_t> begins{};     ///< by part, which is a module: where its keys begin
    std::vector<std::uint64_t> keys{};      ///< port and place of each row from a through port, ascending
};

/// Makes `rows` ready for the search. One that comes from no through port is never found, so that it is left
/// over.
void OutletRowsIndex(OutletRows& outlets);

/// The place of the row that leaves this port, is not consumed and is taken next, all places before `from`
/// having had their turn in this pass: the first from there on; if there is none, the first, which is below
/// `from` and for the next pass; `NoPlace` where none is left.
std::int32_t OutletRowFind(OutletRows& outlets, int module, int port, std::int32_t from);

}  // namespace vorn
