#include "standin/name_cache.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

#include "standin/project.h"

namespace standin {

namespace {

constexpr std::size_t KeyBytes = 32;
constexpr std::size_t PlaceCount = 4096;  // a power of two
constexpr std::size_t Neighbour = 1;      // a name may stand in its place or in this one beside it

/// A name, filled up with zero bytes, of which it has none.
using Key = std::array<std::uint64_t, KeyBytes / sizeof(std::uint64_t)>;

/// One line of the processor's cache.
struct alignas(64) Place {
    Key key{};
    std::uint64_t revision = 0;  ///< of the engine when the name was decoded
    DecodedName decoded{};
};
static_assert(sizeof(Place) == 64);

/// This thread's places; none until the first name is kept.
std::unique_ptr<Place[]>& Places() {
    thread_local std::unique_ptr<Place[]> places;
    return places;
}

Key KeyOf(std::string_view name) {
    Key key{};
    std::memcpy(key.data(), name.data(), name.size());
    return key;
}

bool Same(const Key& left, const Key& right) {
    std::uint64_t different = 0;
    for (std::size_t word = 0; word < left.size(); ++word) different |= left[word] ^ right[word];
    return different == 0;
}

std::size_t PlaceOf(const Key& key) {
    constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = 0;
    for (const std::uint64_t word : key) mixed = (mixed ^ word ^ mixed >> 29U) * Odd;
    return (mixed >> 40U) % PlaceCount;
}

}  // namespace

bool NameCacheFind(std::string_view name, DecodedName& decoded) {
    const Place* const places = Places().get();
    if (places == nullptr || name.size() > KeyBytes) return false;
    const Key key = KeyOf(name);
    const std::size_t own = PlaceOf(key);
    const Place& place = places[Same(places[own].key, key) ? own : own ^ Neighbour];
    if (!Same(place.key, key) || place.revision != LastRevision()) return false;
    decoded = place.decoded;
    return true;
}

void NameCacheAdd(std::string_view name, const DecodedName& decoded) {
    if (name.size() > KeyBytes) return;
    std::unique_ptr<Place[]>& places = Places();
    if (places == nullptr) places.reset(new (std::nothrow) Place[PlaceCount]);
    if (places == nullptr) return;
    const Key key = KeyOf(name);
    const std::uint64_t revision = LastRevision();
    const std::size_t own = PlaceOf(key);
    Place& beside = places[own ^ Neighbour];
    // The one that was there before moves over where that place serves no more.
    if (!Same(places[own].key, key) && beside.revision != revision) beside = places[own];
    places[own] = {.key = key, .revision = revision, .decoded = decoded};
}

}  // namespace standin
