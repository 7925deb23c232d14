#include "variables/var_batch.h"

#include <algorithm>

#include "text/json.h"
#include "variables/var_read.h"
#include "variables/var_write.h"

namespace vorn {

namespace {

using rapidjson::SizeType;
using Value = JsonValue;

/// The array that is the member `name` of `root`; null where there is none.
const Value* ArrayMember(const Value& root, const char* name) {
    if (!root.IsObject()) return nullptr;
    const auto member = root.FindMember(name);
    return member != root.MemberEnd() && member->value.IsArray() ? &member->value : nullptr;
}

const char* NameOf(const Value& element) {
    return element.IsString() ? element.GetString() : "";
}

const char* Write(const char* name, const Value& value) {
    if (value.IsString()) return VarSetByName(name, value.GetString());
    if (value.IsNumber()) return VarSetByName(name, JsonText(value).c_str());
    return "shibai";
}

/// Sets `reply` to the list of `count` texts, each appended by `append` for its position.
template <typename Append>
void ListWrite(std::string& reply, SizeType count, Append append) {
    reply = "[";
    for (SizeType position = 0; position < count; ++position) {
        reply.append("\",\"", position == 0 ? 1 : 3);
        append(position);
    }
    reply += count == 0 ? "]" : "\"]";
}

/// Runs `run` on the document that `json` parses to.
template <typename Run>
void WithDocument(const char* json, Run run) {
    std::string text(json);
    JsonDocument document;
    JsonParseInPlace(text.data(), document);
    run(document);
}

}  // namespace

void VarGetByDocument(const JsonValue& document, std::string& reply) {
    const Value* names = ArrayMember(document, "VarName");
    ListWrite(reply, names == nullptr ? 0 : names->Size(),
              [&](SizeType position) { VarAppendByName(reply, NameOf((*names)[position])); });
}

void VarSetByDocument(const JsonValue& document, std::string& reply) {
    const Value* names = ArrayMember(document, "VarName");
    const Value* values = ArrayMember(document, "VarValue");
    SizeType count = names == nullptr ? 0 : names->Size();
    if (values != nullptr) count = std::min(count, values->Size());
    ListWrite(reply, count, [&](SizeType position) {
        const char* name = NameOf((*names)[position]);
        reply += values == nullptr ? VarSetByName(name, "") : Write(name, (*values)[position]);
    });
}

void VarGetByJson(const char* json, std::string& reply) {
    WithDocument(json, [&reply](const JsonValue& document) { VarGetByDocument(document, reply); });
}

void VarSetByJson(const char* json, std::string& reply) {
    WithDocument(json, [&reply](const JsonValue& document) { VarSetByDocument(document, reply); });
}

}  // namespace vorn
