// Many variables in one request: the verbs "Get" and "Set" with the name "json".

#pragma once

#include <string>
#include <string_view>

#include "text/json.h"

namespace vorn {

/// The name that asks for a batch in the place of a variable's.
inline constexpr std::string_view BatchName = "json";

/// Reads the variables that the array `VarName` of the JSON object `json`, a NUL-terminated text, names. Sets
/// `reply` to a list of their texts in that order, each in quotes and as `VarGetByName` gives it, with
/// nothing escaped; a failed name is its element's text. An element that is no string is the empty name.
/// Where there is no such array the reply is "[]".
void VarGetByJson(const char* json, std::string& reply);

/// Writes them with the elements of the array `VarValue`, in order; the shorter of the two arrays counts, and
/// without a `VarValue` all are written with the empty text. A number is written as its JSON text; an element
/// that is neither string nor number writes nothing and answers "shibai". `reply` is made as above, of what
/// `VarSetByName` gives.
void VarSetByJson(const char* json, std::string& reply);

// The same of documents that are parsed already.

void VarGetByDocument(const JsonValue& document, std::string& reply);
void VarSetByDocument(const JsonValue& document, std::string& reply);

}  // namespace vorn
