#include "text/json.h"

#include <rapidjson/reader.h>
#include <rapidjson/writer.h>

namespace vorn {

namespace {

/// Hands the parser's events on to a document and ends the parse before it recurses too deep.
struct DepthGuard {
    using Ch = char;
    JsonDocument& document;
    int depth = 0;

    bool Null() { return document.Null(); }
    bool Bool(bool value) { return document.Bool(value); }
    bool Int(int value) { return document.Int(value); }
    bool Uint(unsigned value) { return document.Uint(value); }
    bool Int64(std::int64_t value) { return document.Int64(value); }
    bool Uint64(std::uint64_t value) { return document.Uint64(value); }
    bool Double(double value) { return document.Double(value); }
    bool RawNumber(const Ch* text, rapidjson::SizeType length, bool copy) {
        return document.RawNumber(text, length, copy);
    }
    bool String(const Ch* text, rapidjson::SizeType length, bool copy) {
        return document.String(text, length, copy);
    }
    bool Key(const Ch* text, rapidjson::SizeType length, bool copy) {
        return document.Key(text, length, copy);
    }
    bool StartObject() { return ++depth <= JsonDepthLimit && document.StartObject(); }
    bool EndObject(rapidjson::SizeType members) { return --depth >= 0 && document.EndObject(members); }
    bool StartArray() { return ++depth <= JsonDepthLimit && document.StartArray(); }
    bool EndArray(rapidjson::SizeType elements) { return --depth >= 0 && document.EndArray(elements); }
};

/// What the writer puts its characters into.
struct TextStream {
    using Ch = char;
    std::string& text;
    void Put(char character) { text.push_back(character); }
    void Flush() {}
};

template <unsigned Flags, typename Stream>
void Parse(Stream stream, JsonDocument& document) {
    document.SetNull();
    auto parse = [&stream](JsonDocument& target) {
        rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonMemory> reader;
        DepthGuard guard{target};
        return !reader.Parse<Flags>(stream, guard).IsError();
    };
    document.Populate(parse);
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
