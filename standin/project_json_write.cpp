// The writing of a project as JSON. Names of members stand in the pieces between the values, so that they
// cost no more than their bytes.

#include <algorithm>
#include <cmath>
#include <span>

#include "standin/project_json.h"
#include "standin/summed_text.h"

namespace standin {

namespace {

/// Writes values with commas between, in brackets.
template <typename Values, typename Write>
void WriteArray(SummedText& text, const Values& values, Write write) {
    text.Raw("[");
    bool first = true;
    for (const auto& value : values) {
        if (!first) text.Raw(",");
        first = false;
        write(value);
    }
    text.Raw("]");
}

void WriteReals(SummedText& text, std::span<const double> values) {
    WriteArray(text, values, [&text](double value) { text.Real(value); });
}

bool IsZero(double value) {
    return value == 0.0 && !std::signbit(value);
}

/// Most layers hold nothing yet and are written as an empty object.
bool IsBlank(const ElementValues& values) {
    return values.ports.empty() && std::all_of(values.items.begin(), values.items.end(), IsZero);
}

void WritePort(SummedText& text, const PortValues& port) {
    std::array<double, 3 + ArrayEntries> values{port.pressure, port.temperature, port.flow};
    std::copy(port.series.begin(), port.series.end(), values.begin() + 3);
    WriteReals(text, values);
}

void WriteLayer(SummedText& text, const ElementValues& values) {
    if (IsBlank(values)) {
        text.Raw("{}");
        return;
    }
    text.Raw(R"({"items":)");
    WriteReals(text, values.items);
    text.Raw(R"(,"ports":)");
    WriteArray(text, values.ports, [&text](const PortValues& port) { WritePort(text, port); });
    text.Raw("}");
}

void WriteElement(SummedText& text, int number, const Element& element) {
    text.Raw(R"({"number":)");
    text.Integer(number);
    text.Raw(R"(,"page":)");
    text.Integer(element.page);
    text.Raw(R"(,"x":)");
    text.Integer(element.x);
    text.Raw(R"(,"z":)");
    text.Integer(element.z);
    text.Raw(R"(,"instanceId":)");
    text.Quoted(element.instanceId);
    if (std::all_of(element.layers.begin(), element.layers.end(), IsBlank)) return;
    text.Raw(R"(,"layers":)");
    WriteArray(text, element.layers, [&text](const ElementValues& values) { WriteLayer(text, values); });
}

void WriteRow(SummedText& text, int number, const Module& module) {
    WriteElement(text, number, module);
    text.Raw(R"(,"type":)");
    text.Integer(ModuleTypeFind(module.type)->oneId);
    text.Raw(R"(,"modelId":)");
    text.Quoted(module.modelId);
    text.Raw(R"(,"important":)");
    text.Quoted(module.important);
    text.Raw(R"(,"room":)");
    text.Integer(module.room);
    text.Raw("}");
}

void WriteRow(SummedText& text, int number, const Node& node) {
    WriteElement(text, number, node);
    text.Raw(R"(,"kind":)");
    text.Integer(node.kind);
    text.Raw("}");
}

void WriteRow(SummedText& text, int number, const LinkSxCache& link) {
    text.Raw(R"({"number":)");
    text.Integer(number);
    text.Raw(R"(,"ends":)");
    WriteArray(text, LinkNumbers, [&](const auto member) { text.Integer(link.*member); });
    text.Raw(link.F_Type2 ? R"(,"upstreamThrough":true)" : R"(,"upstreamThrough":false)");
    text.Raw(link.S_Type2 ? R"(,"downstreamThrough":true})" : R"(,"downstreamThrough":false})");
}

template <typename Row>
void WriteTable(SummedText& text, const Table<Row>& table) {
    text.Raw("[");
    bool first = true;
    for (std::size_t number = 0; number < table.rows.size(); ++number) {
        if (!Table<Row>::InUse(table.rows[number])) continue;
        if (!first) text.Raw(",");
        first = false;
        WriteRow(text, static_cast<int>(number), table.rows[number]);
    }
    text.Raw("]");
}

void WriteVariable(SummedText& text, const ProjectVariable& variable) {
    text.Raw(R"({"name":)");
    text.Quoted(variable.name);
    text.Raw(R"(,"kind":)");
    text.Integer(static_cast<int>(variable.kind));
    text.Raw(R"(,"reals":)");
    WriteReals(text, variable.reals);
    text.Raw(R"(,"integers":)");
    WriteArray(text, variable.integers, [&text](int value) { text.Integer(value); });
    text.Raw("}");
}

}  // namespace

std::uint64_t ProjectToJson(const Project& project, std::string& json) {
    SummedText text(json);
    text.Raw(R"({"modules":)");
    WriteTable(text, project.modules);
    text.Raw(R"(,"nodes":)");
    WriteTable(text, project.nodes);
    text.Raw(R"(,"links":)");
    WriteTable(text, project.links);
    text.Raw(R"(,"variables":)");
    WriteArray(text, project.variables,
               [&text](const ProjectVariable& variable) { WriteVariable(text, variable); });
    text.Raw(R"(,"script":)");
    text.Quoted(project.script);
    text.Raw("}");
    return text.Sum();
}

}  // namespace standin
