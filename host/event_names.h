// The words that stand for what records of events have as numbers.

#pragma once

#include "service/exchange_events.h"

const char* NameOf(vorn::Front front);
const char* NameOf(vorn::ReplyKind kind);
const char* NameOf(vorn::StoreEnd store);
const char* NameOf(vorn::RunState state);
const char* NameOf(vorn::NoticeKind kind);
inline const char* SideName(bool writes) {
    return writes ? "write" : "read";
}

/// How many of each there are.
inline constexpr std::size_t FrontCount = 4;
inline constexpr std::size_t ReplyKindCount = 9;
inline constexpr std::size_t RunStateCount = 4;
inline constexpr std::size_t NoticeKindCount = 5;
