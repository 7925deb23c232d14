// JSON texts in and out, and the fields of a request.

#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

namespace vorn {

/// What the library's parts take their memory from. Its own allocator hands on a null pointer where there is
/// none, and they write through it; this one throws `std::bad_alloc`.
class JsonMemory {
  public:
    static const bool kNeedFree = true;
    void* Malloc(std::size_t size) { return size == 0 ? nullptr : Checked(std::malloc(size)); }
    void* Realloc(void* block, std::size_t /*oldSize*/, std::size_t size) {
        if (size > 0) return Checked(std::realloc(block, size));
        std::free(block);
        return nullptr;
    }
    static void Free(void* block) { std::free(block); }

  private:
    static void* Checked(void* block) {
        if (block == nullptr) throw std::bad_alloc();
        return block;
    }
};

using JsonPool = rapidjson::MemoryPoolAllocator<JsonMemory>;
using JsonDocument = rapidjson::GenericDocument<rapidjson::UTF8<>, JsonPool, JsonMemory>;
using JsonValue = JsonDocument::ValueType;

/// Objects and arrays may stand this deep in each other; a deeper text counts as one that does not parse. The
/// parser recurses, so without the bound a text of brackets would end the process.
inline constexpr int JsonDepthLimit = 256;

/// Parses a NUL-terminated JSON text: one root value, and nothing but white space behind it. On any fault
/// `document` is null afterwards. Text values are taken as they come, valid UTF-8 or not.
void JsonParse(const char* text, JsonDocument& document);

/// The same without a copy of the text values: they stay in `text`, which is changed and must outlive the use
/// of `document`.
void JsonParseInPlace(char* text, JsonDocument& document);

/// The compact JSON text of `value`.
std::string JsonText(const JsonValue& value);

/// What came of reading one field of an object.
enum class Field { Absent, Read, WrongType };

/// Each looks for the member `name` of `object`, which is an object, and reads it if it is of the accepted
/// type; else `value` stays as it is.
Field FieldInt(const JsonValue& object, const char* name, int& value);
Field FieldInt64(const JsonValue& object, const char* name, std::int64_t& value);
/// A number written with a fraction or an exponent, or too large for any integer type.
Field FieldDouble(const JsonValue& object, const char* name, double& value);
/// A double, or an integer of 32 bits.
Field FieldNumber(const JsonValue& object, const char* name, double& value);
Field FieldText(const JsonValue& object, const char* name, std::string& value);

}  // namespace vorn
