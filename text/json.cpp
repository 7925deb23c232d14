#include "text/json.h"

#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace vorn {

namespace {

/// Hands the parser's events on to a document and ends the parse before it recurses too deep.
struct DepthGuard {
    using Ch = char;
    rapidjson::Document& document;
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

template <unsigned Flags, typename Stream>
void Parse(Stream stream, rapidjson::Document& document) {
    document.SetNull();
    auto parse = [&stream](rapidjson::Document& target) {
        rapidjson::Reader reader;
        DepthGuard guard{target};
        return !reader.Parse<Flags>(stream, guard).IsError();
    };
    document.Populate(parse);
}

template <typename Value, typename Test, typename Get>
Field ReadField(const rapidjson::Value& object, const char* name, Value& value, Test accepted, Get get) {
    const auto member = object.FindMember(name);
    if (member == object.MemberEnd()) return Field::Absent;
    if (!accepted(member->value)) return Field::WrongType;
    value = get(member->value);
    return Field::Read;
}

}  // namespace

void JsonParse(const char* text, rapidjson::Document& document) {
    Parse<rapidjson::kParseDefaultFlags>(rapidjson::StringStream(text), document);
}

void JsonParseInPlace(char* text, rapidjson::Document& document) {
    Parse<rapidjson::kParseInsituFlag>(rapidjson::InsituStringStream(text), document);
}

std::string JsonText(const rapidjson::Value& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    return {buffer.GetString(), buffer.GetSize()};
}

Field FieldInt(const rapidjson::Value& object, const char* name, int& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsInt(); },
        [](const auto& field) { return field.GetInt(); });
}

Field FieldInt64(const rapidjson::Value& object, const char* name, std::int64_t& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsInt64(); },
        [](const auto& field) { return field.GetInt64(); });
}

Field FieldDouble(const rapidjson::Value& object, const char* name, double& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsDouble(); },
        [](const auto& field) { return field.GetDouble(); });
}

Field FieldNumber(const rapidjson::Value& object, const char* name, double& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsDouble() || field.IsInt(); },
        [](const auto& field) { return field.GetDouble(); });
}

Field FieldText(const rapidjson::Value& object, const char* name, std::string& value) {
    return ReadField(
        object, name, value, [](const auto& field) { return field.IsString(); },
        [](const auto& field) { return std::string(field.GetString(), field.GetStringLength()); });
}

}  // namespace vorn
