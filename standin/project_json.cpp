#include "standin/project_json.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>

#include "text/json.h"

namespace standin {

namespace {

using vorn::Field;
using vorn::FieldText;
using vorn::JsonDocument;
using vorn::JsonValue;

// Each is false where the text is not as the writer makes it.

/// Numbers are read from their own texts, so that all come back exactly: the JSON library's exact reading of
/// a long fraction of zeros is undefined. No number may be beyond what `Number` can hold.
template <typename Number>
bool ReadNumber(const JsonValue& text, Number& value) {
    if (!text.IsString()) return false;
    const char* const last = text.GetString() + text.GetStringLength();
    const auto [end, error] = std::from_chars(text.GetString(), last, value);
    return error == std::errc() && end == last;
}

template <typename Number>
bool ReadMember(const JsonValue& object, const char* name, Number& value) {
    const auto member = object.FindMember(name);
    return member != object.MemberEnd() && ReadNumber(member->value, value);
}

bool ReadMember(const JsonValue& object, const char* name, std::string& value) {
    return FieldText(object, name, value) == Field::Read;
}

bool ReadMember(const JsonValue& object, const char* name, bool& value) {
    const auto member = object.FindMember(name);
    if (member == object.MemberEnd() || !member->value.IsBool()) return false;
    value = member->value.GetBool();
    return true;
}

/// The array of that name, null where there is none.
const JsonValue* FindArray(const JsonValue& object, const char* name) {
    const auto member = object.FindMember(name);
    return member != object.MemberEnd() && member->value.IsArray() ? &member->value : nullptr;
}

/// Reads each element of the array of that name.
template <typename Read>
bool ReadArray(const JsonValue& object, const char* name, Read read) {
    const JsonValue* array = FindArray(object, name);
    return array != nullptr && std::all_of(array->Begin(), array->End(), read);
}

/// Reads an array of objects.
template <typename Read>
bool ReadObjects(const JsonValue& object, const char* name, Read read) {
    return ReadArray(object, name, [&](const JsonValue& row) { return row.IsObject() && read(row); });
}

bool ReadReals(const JsonValue& array, std::span<double> values) {
    if (!array.IsArray() || array.Size() != values.size()) return false;
    auto* value = values.data();
    for (const JsonValue& element : array.GetArray()) {
        double number = 0.0;
        if (!ReadNumber(element, number)) return false;
        *value++ = std::isfinite(number) ? number : 0.0;
    }
    return true;
}

bool ReadPort(const JsonValue& array, ElementValues& values) {
    std::array<double, 3 + ArrayEntries> numbers{};
    if (values.ports.size() == PortsPerElement || !ReadReals(array, numbers)) return false;
    PortValues& port = values.ports.emplace_back(
        PortValues{.pressure = numbers[0], .temperature = numbers[1], .flow = numbers[2]});
    std::copy(numbers.begin() + 3, numbers.end(), port.series.begin());
    return true;
}

bool ReadLayer(const JsonValue& object, ElementValues& values) {
    if (!object.IsObject()) return false;
    values.items.assign(values.items.size(), 0.0);
    if (object.MemberCount() == 0) return true;
    const JsonValue* items = FindArray(object, "items");
    // An older version stored fewer items; the new ones come behind them.
    return items != nullptr && items->Size() <= values.items.size() &&
           ReadReals(*items, std::span(values.items).first(items->Size())) &&
           ReadArray(object, "ports", [&](const JsonValue& port) { return ReadPort(port, values); });
}

bool ReadLayers(const JsonValue& object, Element& element) {
    if (!object.HasMember("layers")) {
        for (ElementValues& blank : element.layers) blank.items.assign(blank.items.size(), 0.0);
        return true;
    }
    const JsonValue* layers = FindArray(object, "layers");
    if (layers == nullptr || layers->Size() != LayerCount) return false;
    auto* values = element.layers.data();
    return std::all_of(layers->Begin(), layers->End(),
                       [&](const JsonValue& layer) { return ReadLayer(layer, *values++); });
}

struct Place {
    int number = -1;
    int page = 0;
    int x = 0;
    int z = 0;
    std::string instanceId{};
};

bool ReadPlace(const JsonValue& object, Place& place) {
    return ReadMember(object, "number", place.number) && ReadMember(object, "page", place.page) &&
           ReadMember(object, "x", place.x) && ReadMember(object, "z", place.z) &&
           ReadMember(object, "instanceId", place.instanceId);
}

bool ReadModule(const JsonValue& object, Project& project) {
    Place place;
    std::int64_t oneId = 0;
    if (!ReadPlace(object, place) || !ReadMember(object, "type", oneId)) return false;
    Module* module = ModuleAdd(project, place.number, ModuleTypeNumber(oneId), place.page, place.x, place.z);
    if (module == nullptr) return false;
    ModuleIdentify(project, place.number, place.instanceId);
    return ReadLayers(object, *module) && ReadMember(object, "modelId", module->modelId) &&
           ReadMember(object, "important", module->important) && ReadMember(object, "room", module->room);
}

bool ReadNode(const JsonValue& object, Project& project) {
    Place place;
    int kind = -1;
    if (!ReadPlace(object, place) || !ReadMember(object, "kind", kind)) return false;
    Node* node = NodeAdd(project, place.number, kind, place.page, place.x, place.z);
    if (node == nullptr) return false;
    NodeIdentify(project, place.number, place.instanceId);
    return ReadLayers(object, *node);
}

bool ReadLink(const JsonValue& object, Project& project) {
    int number = -1;
    LinkSxCache link;
    const JsonValue* ends = FindArray(object, "ends");
    if (!ReadMember(object, "number", number) || ends == nullptr || ends->Size() != LinkNumberCount) {
        return false;
    }
    const auto* member = LinkNumbers.data();
    for (const JsonValue& end : ends->GetArray()) {
        if (!ReadNumber(end, link.**member++)) return false;
    }
    return ReadMember(object, "upstreamThrough", link.F_Type2) &&
           ReadMember(object, "downstreamThrough", link.S_Type2) && LinkAdd(project, number, link);
}

bool ReadVariable(const JsonValue& object, Project& project) {
    int kind = -1;
    ProjectVariable variable;
    const JsonValue* reals = FindArray(object, "reals");
    const JsonValue* integers = FindArray(object, "integers");
    if (!ReadMember(object, "name", variable.name) || !ReadMember(object, "kind", kind)) return false;
    if (reals == nullptr || !ReadReals(*reals, variable.reals)) return false;
    if (integers == nullptr || integers->Size() != variable.integers.size()) return false;
    if (kind < 0 || kind > static_cast<int>(VariableKind::IntegerArray)) return false;
    variable.kind = static_cast<VariableKind>(kind);
    auto* value = variable.integers.data();
    for (const JsonValue& integer : integers->GetArray()) {
        if (!ReadNumber(integer, *value++)) return false;
    }
    project.variables.push_back(std::move(variable));
    return project.variables.size() <= ProjectVariableCapacity;
}

/// Brings the variables that every project has to their places, the first rows, on which the simulation
/// counts. An older version stored fewer of them. False where one of them is of another kind, or where one of
/// the oldest is missing.
bool PlaceStandardVariables(Project& project) {
    constexpr std::size_t OldestCount = 6;
    std::vector<ProjectVariable> placed = StandardVariables();
    for (std::size_t row = 0; row < StandardVariableCount; ++row) {
        const auto stored =
            std::find_if(project.variables.begin(), project.variables.end(),
                         [&](const ProjectVariable& each) { return each.name == placed[row].name; });
        if (stored == project.variables.end()) {
            if (row < OldestCount) return false;
            continue;
        }
        if (stored->kind != placed[row].kind) return false;
        placed[row] = std::move(*stored);
        project.variables.erase(stored);
    }
    placed.insert(placed.end(), project.variables.begin(), project.variables.end());
    project.variables = std::move(placed);
    return project.variables.size() <= ProjectVariableCapacity;
}

}  // namespace

bool ProjectFromJson(const std::string& text, Project& project) {
    // Iterative, so that no depth of nesting can end the process.
    constexpr unsigned Flags = rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag |
                               rapidjson::kParseNanAndInfFlag;
    JsonDocument document;
    document.Parse<Flags>(text);
    if (document.HasParseError() || !document.IsObject()) return false;
    return ReadObjects(document, "modules", [&](const auto& row) { return ReadModule(row, project); }) &&
           ReadObjects(document, "nodes", [&](const auto& row) { return ReadNode(row, project); }) &&
           ReadObjects(document, "links", [&](const auto& row) { return ReadLink(row, project); }) &&
           ReadObjects(document, "variables", [&](const auto& row) { return ReadVariable(row, project); }) &&
           PlaceStandardVariables(project) && ReadMember(document, "script", project.script);
}

}  // namespace standin
