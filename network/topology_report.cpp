// The topology of the project analysed last, as JSON.

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "elements/grid.h"
#include "elements/instance_id.h"
#include "elements/node_kind.h"
#include "elements/slot.h"
#include "engine/vorn_core.h"
#include "include/vorn_server.h"
#include "network/branches.h"
#include "network/project_check.h"
#include "text/ansi_to_utf8.h"
#include "text/fixed_text.h"

namespace vorn {

namespace {

constexpr int RoomID = 0;

/// The text of the last report, which the host holds by its pointer.
std::string& ReportText = *new std::string;

/// A report under construction. The document refers to the names here and in `ProjectCheck`: none may move or
/// change before the text is written.
struct Report {
    rapidjson::Document NewPjtJson{rapidjson::kObjectType};
    std::array<std::string, ModuleTypeCount> midName{};
    std::vector<std::string> ConnectionID{};
    std::vector<std::string> F_InstanceID{};
    std::vector<std::string> S_InstanceID{};
    std::vector<std::string> Front_InstanceID{};
    std::vector<std::string> Post_InstanceID{};
    std::vector<std::vector<std::string>> BranchNbInfo{};
};

rapidjson::Value NameByReference(std::string_view text) {
    const char* start = text.empty() ? "" : text.data();  // an empty view need not point anywhere
    return rapidjson::Value(rapidjson::StringRef(start, static_cast<rapidjson::SizeType>(text.size())));
}

rapidjson::Value NewObject() {
    return rapidjson::Value(rapidjson::kObjectType);
}

rapidjson::Value NewArray() {
    return rapidjson::Value(rapidjson::kArrayType);
}

/// Adds a member to an object; its name lives as long as the document.
template <typename Value>
void Add(Report& report, rapidjson::Value& object, std::string_view name, Value value) {
    rapidjson::Value member(std::move(value));
    object.AddMember(NameByReference(name), member, report.NewPjtJson.GetAllocator());
}

void Append(Report& report, rapidjson::Value& array, rapidjson::Value& entry) {
    array.PushBack(entry, report.NewPjtJson.GetAllocator());
}

void AddTable(Report& report, std::string_view countName, std::string_view name, rapidjson::Value& table) {
    Add(report, report.NewPjtJson, countName, static_cast<int>(table.Size()));
    Add(report, report.NewPjtJson, name, std::move(table));
}

/// The identity in a row of the snapshot, where an element without one gets its default.
std::string_view IdentityOf(char (&field)[IdentityBytes], ElementKind kind, int number) {
    if (field[0] == '\0') TextCopy(field, InstanceIdText(kind, number));
    return {field, strnlen(field, IdentityBytes)};
}

/// The name of a module type, converted once and kept; empty for a number outside the table.
std::string_view DeviceNameOf(Report& report, int type) {
    if (type < 0 || type >= ModuleTypeCount) return {};
    std::string& name = report.midName[static_cast<std::size_t>(type)];
    if (name.empty()) name = AnsiToUtf8(ModuleNameGet(type));
    return name;
}

template <typename Row>
void AddPlace(Report& report, rapidjson::Value& entry, const Row& row) {
    Add(report, entry, "PositionX", row.PositionX / PositionScale);
    Add(report, entry, "PositionZ", row.PositionZ / PositionScale);
    Add(report, entry, "RoomID", RoomID);
}

void ReportDevices(Report& report) {
    rapidjson::Value table = NewArray();
    for (int number = 0; number < ProjectCheck.ModuleNb; ++number) {
        ModuleRow& row = ProjectCheck.ModuleSx[number];
        if (!row.InUse) continue;
        rapidjson::Value entry = NewObject();
        Add(report, entry, "InstanceID", NameByReference(IdentityOf(row.InstanceID, ModuleKind, number)));
        Add(report, entry, "DeviceName", NameByReference(DeviceNameOf(report, row.TypeNb)));
        Add(report, entry, "VornModuleID", ModuleOneID_Get(row.TypeNb));
        AddPlace(report, entry, row);
        Add(report, entry, "ModelID", NameByReference({row.ModelID, strnlen(row.ModelID, IdentityBytes)}));
        Append(report, table, entry);
    }
    AddTable(report, "DeviceNb", "DeviceInfo", table);
}

void ReportNodes(Report& report) {
    rapidjson::Value table = NewArray();
    for (int number = 0; number < ProjectCheck.NodeNb; ++number) {
        NodeRow& row = ProjectCheck.NodeSx[number];
        if (!row.InUse) continue;
        rapidjson::Value entry = NewObject();
        Add(report, entry, "InstanceID", NameByReference(IdentityOf(row.InstanceID, NodeKind, number)));
        Add(report, entry, "NodeName", NameByReference(NodeTypeName(row.Kind)));
        Add(report, entry, "VornModuleID", row.Kind + NodeIdBase);
        AddPlace(report, entry, row);
        Add(report, entry, "ModelID", NameByReference(""));
        Append(report, table, entry);
    }
    AddTable(report, "NodeNb", "NodeInfo", table);
}

/// A row with a jump end is left out: page links stand for it.
bool Reported(int row) {
    const LinkSxCache& link = LinkRowAt(row);
    const bool pageLink = row >= ProjectCheck.LinkNb;
    return link.InUse && (pageLink || (link.F_Sx < JumpKind && link.S_Sx < JumpKind));
}

std::string ConnectionEndName(int kind, int number) {
    return InstanceIdText(kind == ModuleKind ? ModuleKind : NodeKind, number);
}

void ReportConnections(Report& report) {
    const auto rows = static_cast<std::size_t>(LinkRowCount());
    report.ConnectionID.resize(rows);
    report.F_InstanceID.resize(rows);
    report.S_InstanceID.resize(rows);
    rapidjson::Value table = NewArray();
    for (std::size_t slot = 0; slot < rows; ++slot) {
        const int number = static_cast<int>(slot);
        if (!Reported(number)) continue;
        const LinkSxCache& row = LinkRowAt(number);
        report.ConnectionID[slot] = InstanceIdText(LinkKind, number);
        report.F_InstanceID[slot] = ConnectionEndName(row.F_Sx, row.F_Nb);
        report.S_InstanceID[slot] = ConnectionEndName(row.S_Sx, row.S_Nb);
        rapidjson::Value entry = NewObject();
        Add(report, entry, "InstanceID", NameByReference(report.ConnectionID[slot]));
        Add(report, entry, "Type", row.Type);
        Add(report, entry, "PageNb", row.PageNb);
        Add(report, entry, "F_InstanceID", NameByReference(report.F_InstanceID[slot]));
        Add(report, entry, "F_PortNb", row.F_PortNb);
        Add(report, entry, "S_InstanceID", NameByReference(report.S_InstanceID[slot]));
        Add(report, entry, "S_PortNb", row.S_PortNb);
        Append(report, table, entry);
    }
    AddTable(report, "ConnectionNb", "ConnectionInfo", table);
}

std::string BranchEndName(BranchEndKind kind, int number) {
    if (number < 0) return "None";
    return InstanceIdText(kind == ModulePortEnd ? ModuleKind : NodeKind, number);
}

/// The modules of a branch: an object for each, with the aisle under the module's name.
rapidjson::Value AislesOf(Report& report, std::size_t branch) {
    const std::vector<BranchElement>& elements = BranchElements[branch];
    std::vector<std::string>& moduleNames = report.BranchNbInfo[branch];
    moduleNames.reserve(elements.size());
    rapidjson::Value aisles = NewArray();
    for (const BranchElement& element : elements) {
        rapidjson::Value entry = NewObject();
        Add(report, entry, moduleNames.emplace_back(InstanceIdText(ModuleKind, element.Module)),
            element.Aisle);
        Append(report, aisles, entry);
    }
    return aisles;
}

void ReportBranches(Report& report) {
    const auto branches = static_cast<std::size_t>(BranchNb);
    report.Front_InstanceID.resize(branches);
    report.Post_InstanceID.resize(branches);
    report.BranchNbInfo.resize(branches);
    rapidjson::Value table = NewArray();
    for (std::size_t number = 0; number < branches; ++number) {
        const BranchSx& branch = BranchTable[number];
        report.Front_InstanceID[number] = BranchEndName(branch.Front_Sx, branch.Front_Nb);
        report.Post_InstanceID[number] = BranchEndName(branch.Post_Sx, branch.Post_Nb);
        rapidjson::Value entry = NewObject();
        Add(report, entry, "Branch", static_cast<int>(number));
        Add(report, entry, "Type", branch.Type);
        Add(report, entry, "Size", branch.Size);
        Add(report, entry, "Front_InstanceID", NameByReference(report.Front_InstanceID[number]));
        Add(report, entry, "FrontPort", branch.FrontPort);
        Add(report, entry, "InstanceID_AisleNb", AislesOf(report, number));
        Add(report, entry, "Post_InstanceID", NameByReference(report.Post_InstanceID[number]));
        Add(report, entry, "PostPort", branch.PostPort);
        Append(report, table, entry);
    }
    AddTable(report, "BranchNb", "BranchInfo", table);
}

}  // namespace

}  // namespace vorn

const char* Net_InfoToAI(int project) {
    using namespace vorn;
    if (!IsSlot(project)) return nullptr;
    if (BranchNb < 1) Net_Access(project);

    Report report;
    ReportDevices(report);
    ReportNodes(report);
    ReportConnections(report);
    ReportBranches(report);

    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    report.NewPjtJson.Accept(writer);
    ReportText.assign(buffer.GetString(), buffer.GetSize());

    // The report uses the analysis up: the next one analyses afresh.
    BranchNb = 0;
    BranchElements.clear();
    return ReportText.c_str();
}
