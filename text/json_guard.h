// The handler of the parser's events that makes a document.

#pragma once

#include <cstdint>

#include "text/json.h"

namespace vorn {

/// Hands the parser's events on to a document and ends the parse before it recurses too deep.
struct JsonGuard {
    using Ch = char;
    JsonDocument& document;
    int depth = 0;

    explicit JsonGuard(JsonDocument& target) : document(target) {}

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

/// Fills `document` with the events that `handler` lets through; null on any fault.
template <unsigned Flags, typename Stream, typename Handler>
void JsonPopulate(Stream& stream, Handler& handler, JsonDocument& document) {
    document.SetNull();
    auto parse = [&](JsonDocument& /*target*/) {
        rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonMemory> reader;
        return !reader.Parse<Flags>(stream, handler).IsError();
    };
    document.Populate(parse);
}

}  // namespace vorn
