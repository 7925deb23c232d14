#include "text/json.h"

#include <rapidjson/reader.h>
#include <rapidjson/writer.h>

#include "text/json_guard.h"
#include "text/text_stream.h"

namespace vorn {

namespace {

template <unsigned Flags, typename Stream>
void Parse(Stream stream, JsonDocument& document) {
    JsonGuard guard(document);
    JsonPopulate<Flags>(stream, guard, document);
}

template <typename Value, typename Test, typename Get>
Field ReadField(const JsonValue& object, const char* name, Value& value, Test accepted, Get get) {
    const auto member = object.FindMember(name);
    if (member == object.MemberEnd()) return Field::Absent;
    if (!accepted(member->value)) return Field::WrongType;
    value = get(member->value);
    return Field::Read;
}

}  // namespace

void JsonParse(const char* text, JsonDocument& document) {
    Parse<rapidjson::kParseDefaultFlags>(rapidjson::StringStream(text), document);
}

void JsonParseInPlace(char* text, JsonDocument& document) {
    Parse<rapidjson::kParseInsituFlag>(rapidjson::InsituStringStream(text), document);
}

std::string JsonText(const JsonValue& value) {
    using Text = rapidjson::UTF8<>;
    std::string text;
    TextStream stream{text};
    rapidjson::Writer<TextStream, Text, Text, JsonMemory> writer(stream);
    value.Accept(writer);
    return text;
}

Field FieldInt(const JsonValue& object, const char* name, int& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsInt(); },
        [](const auto& field) { return field.GetInt(); });
}

Field FieldInt64(const JsonValue& object, const char* name, std::int64_t& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsInt64(); },
        [](const auto& field) { return field.GetInt64(); });
}

Field FieldDouble(const JsonValue& object, const char* name, double& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsDouble(); },
        [](const auto& field) { return field.GetDouble(); });
}

Field FieldNumber(const JsonValue& object, const char* name, double& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsDouble() || field.IsInt(); },
        [](const auto& field) { return field.GetDouble(); });
}

Field FieldText(const JsonValue& object, const char* name, std::string& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsString(); },
        [](const auto& field) { return std::string(field.GetString(), field.GetStringLength()); });
}

}  // namespace vorn
