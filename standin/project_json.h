// The stored form of a project: its whole content as one JSON text.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "standin/project.h"

namespace standin {

/// The numbers of a link, in the order in which they are stored.
inline constexpr std::size_t LinkNumberCount = 8;
inline constexpr std::array<std::int32_t LinkSxCache::*, LinkNumberCount> LinkNumbers{
    &LinkSxCache::Type,     &LinkSxCache::PageNb, &LinkSxCache::F_Sx, &LinkSxCache::F_Nb,
    &LinkSxCache::F_PortNb, &LinkSxCache::S_Sx,   &LinkSxCache::S_Nb, &LinkSxCache::S_PortNb};

/// Appends the content of `project` as JSON and returns the sum of its bytes, a `ByteSum`. All numbers come
/// back exactly; NaN and the infinities are written as `NaN`, `Infinity` and `-Infinity`, and NaN comes back
/// without its sign. The engine lock is held.
std::uint64_t ProjectToJson(const Project& project, std::string& text);

/// Fills a project that is empty but for its name and capacities. False when `text` is not such a text, or
/// does not fit the catalogue and the tables; `project` then holds anything.
bool ProjectFromJson(const std::string& text, Project& project);

}  // namespace standin
