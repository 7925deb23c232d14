// The commands on the values of one element: live values, the table of items, cache sets, important values.

#include <array>
#include <string>

#include "commands/cache_set.h"
#include "commands/handlers.h"
#include "commands/variable_text.h"
#include "engine/vorn_core.h"
#include "engine/vorn_var.h"
#include "text/json.h"

namespace vorn {

namespace {

constexpr const char* Refused = "shibai";

/// The engine's calls for the kinds of element that have values.
struct KindCalls {
    void (*itemSet)(int slot, int number, int row, int column, const char* text);
    void (*cacheToRun)(int slot, int number, int set);
    void (*runToCache)(int slot, int number, int set);
};

constexpr KindCalls ModuleCalls{ProjectModuleItemValueSet, Pjt_Modu_PchToRun, Pjt_Modu_RunToPch};
constexpr KindCalls NodeCalls{ProjectNodeItemValueSet, Pjt_Node_PchToRun, Pjt_Node_RunToPch};

/// Null for a kind without values.
const KindCalls* KindCallsOf(int midstate) {
    if (midstate == ModuleKind) return &ModuleCalls;
    return midstate == NodeKind ? &NodeCalls : nullptr;
}

/// The text of the variable `item` of the module that the request names.
std::string ModuleVariableText(const Request& request, const char* item) {
    return ProjectVariableText(request.pjtnb, "_MOD" + std::to_string(request.midnb) + "_" + item);
}

std::string PortValueGet(const Request& request, const char* item) {
    return request.midstate == ModuleKind ? ModuleVariableText(request, item) : "0.00";
}

constexpr std::array RoomItems{"InsideTemperature", "OutsideTemperature", "InsideHumidity",
                               "OutsideHumidity",   "InsidePm25",         "OutsidePm25"};

/// What a value is written with. Fields that are absent or of a wrong type keep their defaults.
struct ItemValue {
    int row = 0;
    int column = 0;
    std::string text{};
};

constexpr std::size_t ValueBytes = 255;

/// Reads the request of a command that sets a value.
ItemValue ItemValueRead(const std::string& messages) {
    ItemValue value;
    JsonDocument document;
    JsonParse(messages.c_str(), document);
    if (!document.IsObject()) return value;
    FieldInt(document, "Row", value.row);
    FieldInt(document, "Column", value.column);
    FieldText(document, "Value", value.text);
    return value;
}

/// A value text that is too long: nothing is written and nothing refreshed.
bool IsTooLong(const ItemValue& value) {
    return value.text.size() > ValueBytes;
}

void ItemValueWrite(const Request& request, const ItemValue& value, int column) {
    if (const KindCalls* calls = KindCallsOf(request.midstate)) {
        calls->itemSet(request.pjtnb, request.midnb, value.row, column, value.text.c_str());
    }
}

/// The three sets that clients address by columns 1 to 3 stand in the engine's columns 2 to 4.
constexpr int FirstCacheColumn = 1;
constexpr int LastCacheColumn = 3;
constexpr int CacheColumnShift = 1;
constexpr int RunColumn = 1;

}  // namespace

std::string PreGet(const Request& request) {
    return PortValueGet(request, "IM0_PRE");
}

std::string TempGet(const Request& request) {
    return PortValueGet(request, "IM0_TEMP");
}

std::string FlowGet(const Request& request) {
    return PortValueGet(request, "IM0_FLOW");
}

std::string RoomGet(const Request& request) {
    JsonDocument NewPjtJson(rapidjson::kObjectType);
    auto& allocator = NewPjtJson.GetAllocator();
    for (const char* item : RoomItems) {
        JsonValue value(0.0);
        if (request.midstate == ModuleKind) value.SetString(ModuleVariableText(request, item), allocator);
        NewPjtJson.AddMember(rapidjson::StringRef(item), value, allocator);
    }
    return JsonText(NewPjtJson);
}

std::string VarInfoGet(const Request& request) {
    return Pipe_ModuleVarValueGet(request.pjtnb, request.midstate, request.midnb);
}

std::string VarCacheGet(const Request& request) {
    return Pipe_ModuleVarCacheGet(request.pjtnb, request.midstate, request.midnb);
}

std::string RunValueGet(const Request& request) {
    return Pipe_ModuleRunValueGet(request.pjtnb, request.midstate, request.midnb);
}

std::string VarValueSet(const Request& request) {
    const ItemValue value = ItemValueRead(request.messages);
    if (IsTooLong(value)) return Refused;
    ItemValueWrite(request, value, value.column);
    Pipe_PjtVarValueRef(request.pjtnb);
    return "OK";
}

std::string VarCacheSet(const Request& request) {
    const ItemValue value = ItemValueRead(request.messages);
    const bool known = value.column >= FirstCacheColumn && value.column <= LastCacheColumn;
    if (known && IsTooLong(value)) return Refused;
    if (known) ItemValueWrite(request, value, value.column + CacheColumnShift);
    Pipe_PjtVarValueRef(request.pjtnb);
    return known ? "OK" : "仅有1、2、3套库值，您调用的column编号不可用";
}

std::string RunValueSet(const Request& request) {
    const ItemValue value = ItemValueRead(request.messages);
    if (IsTooLong(value)) return Refused;
    ItemValueWrite(request, value, RunColumn);
    return "OK";
}

std::string CacheToRun(const Request& request) {
    int set = 0;
    const KindCalls* calls = KindCallsOf(request.midstate);
    if (!CacheSetRead(request.messages, set) || calls == nullptr) return Refused;
    calls->cacheToRun(request.pjtnb, request.midnb, set);
    return "OK";
}

std::string RunToCache(const Request& request) {
    int set = 0;
    if (!CacheSetRead(request.messages, set)) return Refused;
    const KindCalls* calls = KindCallsOf(request.midstate);
    if (calls != nullptr) calls->runToCache(request.pjtnb, request.midnb, set);
    Pipe_PjtVarValueRef(request.pjtnb);
    return calls != nullptr ? "OK" : Refused;
}

std::string ImportantGet(const Request& request) {
    return Pipe_ImportantGet(request.pjtnb);
}

std::string ImportantSet(const Request& request) {
    if (request.midstate != ModuleKind) return Refused;
    Pipe_ImportantSet(request.pjtnb, request.midnb, request.messages.c_str());
    return "OK";
}

}  // namespace vorn
