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
constexpr std::size_t WordBytes = sizeof(std::uint64_t);
constexpr std::size_t PlaceCount = 4096;  // a power of two
constexpr std::size_t Neighbour = 1;      // a name may stand in its place or in this one beside it

/// A name in words of 8 bytes. The last word is that of the name's last 8 bytes, so that with the length all
/// is known.
using Key = std::array<std::uint64_t, KeyBytes / WordBytes>;

/// One line of the processor's cache.
struct alignas(64) Place {
    Key key{};
    std::uint64_t stamp = 0;
    DecodedName decoded{};
};
static_assert(sizeof(Place) == 64);

/// What a place bears while it serves: the length of the name, and the engine's revision when it was decoded.
std::uint64_t StampOf(std::string_view name) {
    return LastRevision() << 8U | name.size();
}

/// This thread's places; none until the first name is kept.
std::unique_ptr<Place[]>& Places() {
    thread_local std::unique_ptr<Place[]> places;
    return places;
}

std::uint64_t WordAt(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, WordBytes);
    return word;
}

/// Of a name that can be kept.
Key KeyOf(std::string_view name) {
    Key key{};
    std::size_t word = 0;
    for (; (word + 1) * WordBytes < name.size(); ++word) key[word] = WordAt(name.data() + word * WordBytes);
    key[word] = WordAt(name.data() + name.size() - WordBytes);
    return key;
}

bool CanBeKept(std::string_view name) {
    return name.size() >= WordBytes && name.size() <= KeyBytes;
}

bool Same(const Key& left, const Key& right) {
    std::uint64_t different = 0;
    for (std::size_t word = 0; word < left.size(); ++word) different |= left[word] ^ right[word];
    return different == 0;
}

std::size_t PlaceOf(const Key& key) {
    // Each byte of a name reaches the highest bits of the sum.
    constexpr Key Odd{0x9E3779B97F4A7C15U, 0xC2B2AE3D27D4EB4FU, 0x165667B19E3779F9U, 0xD6E8FEB86659FD93U};
    std::uint64_t mixed = 0;
    for (std::size_t word = 0; word < key.size(); ++word) mixed += key[word] * Odd[word];
    return mixed >> 40U & (PlaceCount - 1);
}

}  // namespace

bool NameCacheFind(std::string_view name, DecodedName& decoded) {
    const Place* const places = Places().get();
    if (places == nullptr || !CanBeKept(name)) return false;
    const Key key = KeyOf(name);
    const std::size_t own = PlaceOf(key);
    const Place& place = places[Same(places[own].key, key) ? own : own ^ Neighbour];
    if (!Same(place.key, key) || place.stamp != StampOf(name)) return false;
    decoded = place.decoded;
    return true;
}

void NameCacheAdd(std::string_view name, const DecodedName& decoded) {
    if (!CanBeKept(name)) return;
    std::unique_ptr<Place[]>& places = Places();
    if (places == nullptr) places.reset(new (std::nothrow) Place[PlaceCount]);
    if (places == nullptr) return;
    const Key key = KeyOf(name);
    const std::uint64_t stamp = StampOf(name);
    const std::size_t own = PlaceOf(key);
    Place& beside = places[own ^ Neighbour];
    // The one that was there before moves over where that place serves no more.
    if (!Same(places[own].key, key) && beside.stamp >> 8U != stamp >> 8U) beside = places[own];
    places[own] = {.key = key, .stamp = stamp, .decoded = decoded};
}

}  // namespace standin
