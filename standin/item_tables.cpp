// The tables of items, the value texts and the important-value texts. A value text is a JSON array, empty for
// an element that has no values: a link, a jump, a vacant number.

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <string>

#include "engine/vorn_core.h"
#include "standin/trace.h"
#include "standin/values.h"
#include "text/json.h"
#include "text/number_text.h"

using namespace standin;

namespace {

using JsonBuffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, vorn::JsonMemory>;
using JsonWriter = rapidjson::Writer<JsonBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>, vorn::JsonMemory>;

/// The columns of a table of items: behind the first stand the layers, in their order.
constexpr int FirstLayerColumn = 1;

void ItemSet(int slot, int kind, int number, int row, int column, const char* text) {
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    Element* element = project == nullptr ? nullptr : ElementFind(*project, kind, number);
    if (element == nullptr || column < FirstLayerColumn || column >= FirstLayerColumn + LayerCount) return;
    double* item = ItemAt(*element, static_cast<Layer>(column - FirstLayerColumn), row);
    if (item != nullptr) *item = Kept(vorn::RealFromText(text));
}

/// A value that JSON has no number for is null.
void ValueWrite(JsonWriter& writer, double value) {
    if (std::isfinite(value)) {
        writer.Double(value);
    } else {
        writer.Null();
    }
}

/// An element whose text is being written.
struct TextOf {
    JsonWriter& writer;
    Project& project;
    Element& element;
    int kind;
    int number;
};

/// Writes the member `Name`, by which clients read and write the variable.
void NameWrite(const TextOf& text, const std::string& item) {
    const std::string name = std::string(text.project.name) + (text.kind == ModuleKind ? "_MOD" : "_NOD") +
                             std::to_string(text.number) + "_" + item;
    text.writer.Key("Name");
    text.writer.String(name);
    text.writer.Key("Value");
}

/// Writes one object for each row of the table of items, begun with the row and the item.
template <typename Members>
void ItemsWrite(const TextOf& text, Members members) {
    const auto items = ItemsOf(text.project, text.kind, text.number);
    for (int row = 0; row < static_cast<int>(items.size()); ++row) {
        const std::string item(items[static_cast<std::size_t>(row)]);
        text.writer.StartObject();
        text.writer.Key("Row");
        text.writer.Int(row);
        text.writer.Key("Item");
        text.writer.String(item);
        members(row, item);
        text.writer.EndObject();
    }
}

void ValueMemberWrite(const TextOf& text, int row) {
    ValueWrite(text.writer, *ItemAt(text.element, RunLayer, row));
}

/// Writes the variables of a port, each with its name.
void PortWrite(const TextOf& text, int port) {
    const PortValues& values = PortRead(text.element, RunLayer, port);
    const std::string stem = "IM" + std::to_string(port) + "_";
    const auto object = [&](std::string_view word, auto write) {
        text.writer.StartObject();
        text.writer.Key("Port");
        text.writer.Int(port);
        NameWrite(text, stem + std::string(word));
        write();
        text.writer.EndObject();
    };
    for (const PortReal& real : PortReals) {
        object(real.word, [&] { ValueWrite(text.writer, values.*real.value); });
    }
    object(PortSeriesWord, [&] {
        text.writer.StartArray();
        for (const double value : values.series) ValueWrite(text.writer, value);
        text.writer.EndArray();
    });
}

/// The ports that a text shows: those of the module's type, and of a node those that something is linked to.
bool PortShown(const TextOf& text, int port) {
    if (text.kind == ModuleKind) return PortFind(text.project, text.number, port) != nullptr;
    return text.element.linksAtPort[static_cast<std::size_t>(port)] > 0;
}

void VariablesWrite(const TextOf& text) {
    ItemsWrite(text, [&](int row, const std::string& item) {
        NameWrite(text, item);
        ValueMemberWrite(text, row);
    });
    for (int port = 0; port < PortsPerElement; ++port) {
        if (PortShown(text, port)) PortWrite(text, port);
    }
}

void CacheSetsWrite(const TextOf& text) {
    ItemsWrite(text, [&](int row, const std::string&) {
        text.writer.Key("Sets");
        text.writer.StartArray();
        for (const Layer layer : {CacheLayer0, CacheLayer1, CacheLayer2}) {
            ValueWrite(text.writer, *ItemAt(text.element, layer, row));
        }
        text.writer.EndArray();
    });
}

void RunValuesWrite(const TextOf& text) {
    ItemsWrite(text, [&](int row, const std::string&) {
        text.writer.Key("Value");
        ValueMemberWrite(text, row);
    });
}

/// The array that `write` fills, as a text that stays until the next call on this thread.
template <typename Write>
const char* ArrayText(Write write) {
    JsonBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartArray();
    write(writer);
    writer.EndArray();
    thread_local std::string text;
    text.assign(buffer.GetString(), buffer.GetSize());
    return text.c_str();
}

const char* ElementText(int slot, int kind, int number, void (*write)(const TextOf&)) {
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    Element* element = project == nullptr ? nullptr : ElementFind(*project, kind, number);
    return ArrayText([&](JsonWriter& writer) {
        if (element != nullptr) write({writer, *project, *element, kind, number});
    });
}

void ImportantWrite(JsonWriter& writer, const std::string& identity, const std::string& text) {
    writer.StartObject();
    writer.Key("InstanceID");
    writer.String(identity);
    writer.Key("Important");
    writer.String(text);
    writer.EndObject();
}

}  // namespace

void ProjectModuleItemValueSet(int slot, int module, int row, int column, const char* text) {
    Trace("ProjectModuleItemValueSet", slot, module, row, column, text);
    ItemSet(slot, ModuleKind, module, row, column, text);
}

void ProjectNodeItemValueSet(int slot, int node, int row, int column, const char* text) {
    Trace("ProjectNodeItemValueSet", slot, node, row, column, text);
    ItemSet(slot, NodeKind, node, row, column, text);
}

const char* Pipe_ModuleVarValueGet(int slot, int kind, int number) {
    Trace("Pipe_ModuleVarValueGet", slot, kind, number);
    return ElementText(slot, kind, number, VariablesWrite);
}

const char* Pipe_ModuleVarCacheGet(int slot, int kind, int number) {
    Trace("Pipe_ModuleVarCacheGet", slot, kind, number);
    return ElementText(slot, kind, number, CacheSetsWrite);
}

const char* Pipe_ModuleRunValueGet(int slot, int kind, int number) {
    Trace("Pipe_ModuleRunValueGet", slot, kind, number);
    return ElementText(slot, kind, number, RunValuesWrite);
}

const char* Pipe_ImportantGet(int slot) {
    Trace("Pipe_ImportantGet", slot);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(slot);
    return ArrayText([project](JsonWriter& writer) {
        if (project == nullptr) return;
        // Of no element: why the script of the run was stopped.
        if (!project->scriptFault.empty()) ImportantWrite(writer, "", project->scriptFault);
        for (const Module& module : project->modules.rows) {
            if (!module.inUse || module.important.empty()) continue;
            ImportantWrite(writer, module.instanceId, module.important);
        }
    });
}

void Pipe_ImportantSet(int slot, int module, const char* text) {
    Trace("Pipe_ImportantSet", slot, module, text);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    Module* found = project == nullptr ? nullptr : project->modules.Find(module);
    if (found != nullptr) found->important = text;
}
