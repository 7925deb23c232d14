#include "network/topology_report.h"

#include <rapidjson/prettywriter.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "elements/grid.h"
#include "elements/instance_id.h"
#include "elements/node_kind.h"
#include "engine/vorn_core.h"
#include "network/snapshot.h"
#include "text/ansi_to_utf8.h"
#include "text/fixed_text.h"
#include "text/json.h"
#include "text/text_stream.h"

namespace vorn {

namespace {

constexpr int RoomID = 0;

/// A report under construction. The text is written straight, as it may be larger than all else together.
struct Report {
    explicit Report(std::string& text) : stream{text}, writer(stream) {}

    TextStream stream;
    rapidjson::PrettyWriter<TextStream, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonMemory> writer;
    std::array<std::optional<std::string>, ModuleTypeCount>
        midName{};  ///< by type; empty until it is asked for
};

void ValueWrite(Report& report, int value) {
    report.writer.Int(value);
}
void ValueWrite(Report& report, std::int64_t value) {
    report.writer.Int64(value);
}
void ValueWrite(Report& report, double value) {
    report.writer.Double(value);
}
void ValueWrite(Report& report, std::string_view value) {
    report.writer.String(value.empty() ? "" : value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

template <typename Value>
void MemberWrite(Report& report, std::string_view name, const Value& value) {
    report.writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    ValueWrite(report, value);
}

/// Writes a table of `count` entries behind its count. `entries` starts and ends each of them by itself.
template <typename Entries>
void TableWrite(Report& report, std::string_view countName, std::string_view name, std::ptrdiff_t count,
                Entries entries) {
    MemberWrite(report, countName, static_cast<int>(count));
    report.writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    report.writer.StartArray();
    entries();
    report.writer.EndArray();
}

/// The identity in a row of the snapshot, where an element without one gets its default.
std::string_view IdentityOf(char (&field)[IdentityBytes], ElementKind kind, int number) {
    if (field[0] == '\0') TextCopy(field, InstanceIdText(kind, number));
    return {field, strnlen(field, IdentityBytes)};
}

/// The name of a module type, asked for once; empty for a number outside the table.
std::string_view DeviceNameOf(Report& report, int type) {
    if (type < 0 || type >= ModuleTypeCount) return {};
    std::optional<std::string>& name = report.midName[type];
    if (!name) name = AnsiToUtf8(ModuleNameGet(type));
    return *name;
}

template <typename Row>
void PlaceWrite(Report& report, const Row& row) {
    MemberWrite(report, "PositionX", row.PositionX / PositionScale);
    MemberWrite(report, "PositionZ", row.PositionZ / PositionScale);
    MemberWrite(report, "RoomID", RoomID);
}

/// Writes the table of the rows in use; `entry` writes the members of one.
template <typename Row, typename Entry>
void RowsWrite(Report& report, std::string_view countName, std::string_view name, std::span<Row> rows,
               Entry entry) {
    const auto inUse = std::count_if(rows.begin(), rows.end(), [](const Row& row) { return row.InUse; });
    TableWrite(report, countName, name, inUse, [&] {
        for (std::size_t number = 0; number < rows.size(); ++number) {
            if (!rows[number].InUse) continue;
            report.writer.StartObject();
            entry(rows[number], static_cast<int>(number));
            report.writer.EndObject();
        }
    });
}

void DevicesWrite(Report& report, ProjectCheckCache& check) {
    const std::span rows(check.ModuleSx, static_cast<std::size_t>(check.ModuleNb));
    RowsWrite(report, "DeviceNb", "DeviceInfo", rows, [&report](ModuleRow& row, int number) {
        MemberWrite(report, "InstanceID", IdentityOf(row.InstanceID, ModuleKind, number));
        MemberWrite(report, "DeviceName", DeviceNameOf(report, row.TypeNb));
        MemberWrite(report, "VornModuleID", ModuleOneID_Get(row.TypeNb));
        PlaceWrite(report, row);
        MemberWrite(report, "ModelID", std::string_view(row.ModelID, strnlen(row.ModelID, IdentityBytes)));
    });
}

void NodesWrite(Report& report, ProjectCheckCache& check) {
    const std::span rows(check.NodeSx, static_cast<std::size_t>(check.NodeNb));
    RowsWrite(report, "NodeNb", "NodeInfo", rows, [&report](NodeRow& row, int number) {
        MemberWrite(report, "InstanceID", IdentityOf(row.InstanceID, NodeKind, number));
        MemberWrite(report, "NodeName", NodeTypeName(row.Kind));
        MemberWrite(report, "VornModuleID", row.Kind + NodeIdBase);
        PlaceWrite(report, row);
        MemberWrite(report, "ModelID", std::string_view());
    });
}

/// Runs `run` on the number and row of each connection. A link row with a jump end is none: page links stand
/// for it.
template <typename Run>
void ForConnections(const ProjectCheckCache& check, Run run) {
    ForLinkRows(check, [&run](int number, const LinkSxCache& row, bool pageLink) {
        if (pageLink || (row.F_Sx < JumpKind && row.S_Sx < JumpKind)) run(number, row);
    });
}

std::string ConnectionEndName(int kind, int number) {
    return InstanceIdText(kind == ModuleKind ? ModuleKind : NodeKind, number);
}

void ConnectionsWrite(Report& report, const ProjectCheckCache& check) {
    int count = 0;
    ForConnections(check, [&count](int, const LinkSxCache&) { ++count; });
    TableWrite(report, "ConnectionNb", "ConnectionInfo", count, [&] {
        ForConnections(check, [&report](int number, const LinkSxCache& row) {
            report.writer.StartObject();
            MemberWrite(report, "InstanceID", InstanceIdText(LinkKind, number));
            MemberWrite(report, "Type", row.Type);
            MemberWrite(report, "PageNb", row.PageNb);
            MemberWrite(report, "F_InstanceID", ConnectionEndName(row.F_Sx, row.F_Nb));
            MemberWrite(report, "F_PortNb", row.F_PortNb);
            MemberWrite(report, "S_InstanceID", ConnectionEndName(row.S_Sx, row.S_Nb));
            MemberWrite(report, "S_PortNb", row.S_PortNb);
            report.writer.EndObject();
        });
    });
}

std::string BranchEndName(BranchEndKind kind, int number) {
    if (number < 0) return "None";
    return InstanceIdText(kind == ModulePortEnd ? ModuleKind : NodeKind, number);
}

/// The modules of a branch: an object for each, with the aisle under the module's name.
void ElementsWrite(Report& report, std::span<const BranchElement> elements) {
    report.writer.Key("InstanceID_AisleNb");
    report.writer.StartArray();
    for (const BranchElement& element : elements) {
        report.writer.StartObject();
        MemberWrite(report, InstanceIdText(ModuleKind, element.Module), element.Aisle);
        report.writer.EndObject();
    }
    report.writer.EndArray();
}

void BranchesWrite(Report& report, const Analysis& analysis) {
    const auto count = static_cast<std::ptrdiff_t>(analysis.BranchTable.size());
    TableWrite(report, "BranchNb", "BranchInfo", count, [&] {
        int number = 0;
        std::span<const BranchElement> left = analysis.BranchElements;
        for (const BranchSx& branch : analysis.BranchTable) {
            report.writer.StartObject();
            MemberWrite(report, "Branch", number++);
            MemberWrite(report, "Type", branch.Type);
            MemberWrite(report, "Size", branch.Size);
            MemberWrite(report, "Front_InstanceID", BranchEndName(branch.Front_Sx, branch.Front_Nb));
            MemberWrite(report, "FrontPort", branch.FrontPort);
            ElementsWrite(report, left.first(branch.Size));
            MemberWrite(report, "Post_InstanceID", BranchEndName(branch.Post_Sx, branch.Post_Nb));
            MemberWrite(report, "PostPort", branch.PostPort);
            report.writer.EndObject();
            left = left.subspan(branch.Size);
        }
    });
}

}  // namespace

void TopologyReport(Analysis& analysis) {
    std::string& text = analysis.ReportText;
    text.clear();
    Report report(text);
    report.writer.StartObject();
    DevicesWrite(report, analysis.ProjectCheck);
    NodesWrite(report, analysis.ProjectCheck);
    ConnectionsWrite(report, analysis.ProjectCheck);
    BranchesWrite(report, analysis);
    report.writer.EndObject();
    if (text.size() < text.capacity() / 2) text.shrink_to_fit();  // gives the memory of a larger one back
    analysis.BranchTable = {};
    analysis.BranchElements = {};
}

}  // namespace vorn
