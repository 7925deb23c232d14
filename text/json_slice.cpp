#include "text/json_slice.h"

#include <rapidjson/reader.h>

#include "text/json_guard.h"

namespace vorn {

namespace {

using rapidjson::SizeType;

/// Notes where the member begins and ends, and counts the bytes that the compact text of its values takes, a
/// separator behind each. White space and escapes make the text found longer than that.
struct SliceGuard : JsonGuard {
    rapidjson::InsituStringStream& stream;
    std::string_view member;
    JsonSlice& slice;
    std::size_t bytes = 0;
    bool known = false;    ///< the first member of that name was met
    bool awaited = false;  ///< its value comes next
    bool inside = false;
    bool numbers = false;

    SliceGuard(JsonDocument& target, rapidjson::InsituStringStream& from, std::string_view name,
               JsonSlice& found)
        : JsonGuard(target), stream(from), member(name), slice(found) {}

    static constexpr std::size_t Separator = 1;
    static constexpr std::size_t Marks = 2;  ///< quotes or brackets

    bool Null() { return Count(4) && JsonGuard::Null(); }
    bool Bool(bool value) { return Count(value ? 4 : 5) && JsonGuard::Bool(value); }
    bool Int(int value) { return Number() && JsonGuard::Int(value); }
    bool Uint(unsigned value) { return Number() && JsonGuard::Uint(value); }
    bool Int64(std::int64_t value) { return Number() && JsonGuard::Int64(value); }
    bool Uint64(std::uint64_t value) { return Number() && JsonGuard::Uint64(value); }
    bool Double(double value) {
        if (inside) slice.reals = true;
        return Number() && JsonGuard::Double(value);
    }
    bool String(const Ch* text, SizeType length, bool copy) {
        return Count(length + Marks) && JsonGuard::String(text, length, copy);
    }
    bool Key(const Ch* text, SizeType length, bool copy) {
        awaited = depth == 1 && !known && std::string_view(text, length) == member;
        known = known || awaited;
        return Count(length + Marks) && JsonGuard::Key(text, length, copy);
    }
    bool StartObject() { return Start() && JsonGuard::StartObject(); }
    bool StartArray() { return Start() && JsonGuard::StartArray(); }
    bool EndObject(SizeType members) { return JsonGuard::EndObject(members) && End(members); }
    bool EndArray(SizeType elements) { return JsonGuard::EndArray(elements) && End(elements); }

    bool Count(std::size_t more) {
        bytes += more + Separator;
        return true;
    }
    bool Number() {
        numbers = true;
        return true;
    }
    bool Start() {
        if (awaited && depth == 1) {
            slice.begin = stream.Tell() - 1;
            bytes = 0;
            numbers = false;
            inside = true;
        }
        awaited = false;
        return Count(Marks);
    }
    bool End(SizeType entries) {
        if (entries > 0) bytes -= Separator;  // the last one has none
        if (!inside || depth > 1) return true;
        inside = false;
        slice.end = stream.Tell();
        slice.compact = !numbers && bytes - Separator == slice.end - slice.begin;
        return true;
    }
};

}  // namespace

void JsonParseInPlace(char* text, JsonDocument& document, std::string_view member, JsonSlice& slice) {
    slice = {};
    rapidjson::InsituStringStream stream(text);
    SliceGuard guard(document, stream, member, slice);
    JsonPopulate<rapidjson::kParseInsituFlag>(stream, guard, document);
}

std::string JsonTextOf(const JsonValue& value, const JsonSlice& slice, std::string_view text) {
    if (!slice.compact) return JsonText(value);
    return std::string(text.substr(slice.begin, slice.end - slice.begin));
}

}  // namespace vorn
