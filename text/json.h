// JSON texts in and out, and the fields of a request.

#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <string>

namespace vorn {

/// Objects and arrays may stand this deep in each other; a deeper text counts as one that does not parse. The
/// parser recurses, so without the bound a text of brackets would end the process.
inline constexpr int JsonDepthLimit = 256;

/// Parses a NUL-terminated JSON text: one root value, and nothing but white space behind it. On any fault
/// `document` is null afterwards. Text values are taken as they come, valid UTF-8 or not.
void JsonParse(const char* text, rapidjson::Document& document);

/// The same without a copy of the text values: they stay in `text`, which is changed and must outlive the use
/// of `document`.
void JsonParseInPlace(char* text, rapidjson::Document& document);

/// The compact JSON text of `value`.
std::string JsonText(const rapidjson::Value& value);

/// What came of reading one field of an object.
enum class Field { Absent, Read, WrongType };

/// Each looks for the member `name` of `object`, which is an object, and reads it if it is of the accepted
/// type; else `value` stays as it is.
Field FieldInt(const rapidjson::Value& object, const char* name, int& value);
Field FieldInt64(const rapidjson::Value& object, const char* name, std::int64_t& value);
/// A number written with a fraction or an exponent, or too large for any integer type.
Field FieldDouble(const rapidjson::Value& object, const char* name, double& value);
/// A double, or an integer of 32 bits.
Field FieldNumber(const rapidjson::Value& object, const char* name, double& value);
Field FieldText(const rapidjson::Value& object, const char* name, std::string& value);

}  // namespace vorn
