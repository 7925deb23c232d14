#include "import/document.h"

#include <cmath>
#include <string>
#include <utility>

#include "elements/view_refresh.h"
#include "engine/vorn_core.h"
#include "import/expansion.h"
#include "import/import_lists.h"
#include "text/fixed_text.h"
#include "text/json.h"
#include "text/number_text.h"

namespace vorn {

namespace {

// A reader takes one field of an object, which may be absent or of a wrong type: then the record gets the
// value that its table row gives for that. It is false only for a text that its field has no room for.

bool StoreText(char (&field)[IdentityBytes], const std::string& text) {
    // A text ends at its first zero byte, here as behind the boundary.
    const std::string_view stored(text.c_str());
    TextCopy(field, stored);
    return stored.size() < IdentityBytes;
}

enum class TextForm { StringOnly, StringOrInt };

/// A wrong type leaves the empty text.
bool ReadText(const JsonValue& object, const char* name, TextForm form, const char* absent,
              char (&field)[IdentityBytes]) {
    std::string text = absent;
    int number = 0;
    if (FieldText(object, name, text) == Field::WrongType) {
        const bool isNumber = form == TextForm::StringOrInt && FieldInt(object, name, number) == Field::Read;
        text = isNumber ? std::to_string(number) : std::string();
    }
    return StoreText(field, text);
}

/// A size, a length or a position: made positive, 0.0 where it is absent or of a wrong type.
double ReadMeasure(Field (*read)(const JsonValue&, const char*, double&), const JsonValue& object,
                   const char* name) {
    double value = 0.0;
    read(object, name, value);
    return std::fabs(value);
}

PortSize ReadPortSize(const JsonValue& object, const char* name) {
    const auto member = object.FindMember(name);
    if (member == object.MemberEnd() || !member->value.IsObject()) return {};
    return {.x = ReadMeasure(FieldNumber, member->value, "x"),
            .y = ReadMeasure(FieldNumber, member->value, "y")};
}

/// A port is given as a text that begins with a decimal number, after white space and a sign at most; a text
/// without leading digits, words for numbers and other bases count as 0.
std::int32_t ReadPort(const JsonValue& object, const char* name) {
    std::string text;
    FieldText(object, name, text);
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r+-");
    if (first == std::string::npos || text[first] == '.') return 0;
    return IntFromReal(RealFromText(text.substr(0, text.find_first_not_of("+-.0123456789eE", first))));
}

/// Where `DeviceID` is present, of whatever type, `VornModuleID` is not looked at.
std::int64_t ReadOneID(const JsonValue& object) {
    std::int64_t oneId = 0;
    if (FieldInt64(object, "DeviceID", oneId) == Field::Absent) FieldInt64(object, "VornModuleID", oneId);
    return oneId;
}

bool ReadDevice(const JsonValue& object, DeviceEntry& device) {
    bool fits = ReadText(object, "InstanceID", TextForm::StringOrInt, "", device.InstanceID);
    device.ModuleOneID = ReadOneID(object);
    device.FluidType = 1;
    FieldInt(object, "FluidType", device.FluidType);
    device.PositionX = ReadMeasure(FieldNumber, object, "PositionX");
    device.PositionZ = ReadMeasure(FieldNumber, object, "PositionZ");
    fits &= ReadText(object, "RoomID", TextForm::StringOrInt, "0", device.RoomID);
    fits &= ReadText(object, "ModelID", TextForm::StringOnly, "", device.ModelID);
    return fits;
}

bool ReadEndDevice(const JsonValue& object, const char* name, char (&field)[IdentityBytes]) {
    return ReadText(object, name, TextForm::StringOnly, "", field);
}

bool ReadConnection(const JsonValue& object, ConnectionEntry& connection) {
    bool fits = ReadText(object, "ConnectionID", TextForm::StringOnly, "", connection.ConnectionID);
    FieldInt(object, "RdcNumber", connection.RdcNumber);
    const Field type = FieldInt(object, "ConnectionType", connection.ConnectionType);
    if (type == Field::Absent) connection.ConnectionType = 1;
    FieldInt(object, "ConnectionMaterialType", connection.ConnectionMaterialType);
    connection.Length = ReadMeasure(FieldDouble, object, "Length");
    fits &= ReadEndDevice(object, "StartDeviceInstanceID", connection.StartDeviceInstanceID);
    connection.StartPortID = ReadPort(object, "StartPortID");
    connection.StartPortSize = ReadPortSize(object, "StartPortSize");
    fits &= ReadEndDevice(object, "EndDeviceInstanceID", connection.EndDeviceInstanceID);
    connection.EndPortID = ReadPort(object, "EndPortID");
    connection.EndPortSize = ReadPortSize(object, "EndPortSize");
    return fits;
}

/// Entries of a list at most: over a hundred times what a project has room for. A record takes some hundred
/// times the memory of the shortest entry's text, so that without a bound one request could take it all.
constexpr rapidjson::SizeType EntryLimit = 1'000'000;

/// Reads an array of objects into a list, a record for each element; an element that is no object leaves a
/// blank record. False when the array or a text is too long.
template <typename Entry>
bool ReadList(const JsonValue& root, const char* name, bool (*read)(const JsonValue&, Entry&),
              std::vector<Entry>& list) {
    const auto member = root.FindMember(name);
    if (member == root.MemberEnd() || !member->value.IsArray()) return true;
    if (member->value.Size() > EntryLimit) return false;
    list.assign(member->value.Size(), Entry());
    auto* entry = list.data();
    for (const JsonValue& element : member->value.GetArray()) {
        if (element.IsObject() && !read(element, *entry)) return false;
        ++entry;
    }
    return true;
}

bool ReadDocument(const char* text, ImportLists& lists) {
    std::string parsed(text);
    JsonDocument document;
    JsonParseInPlace(parsed.data(), document);
    return document.IsObject() && ReadList(document, "DeviceInfo", ReadDevice, lists.ImportDevices) &&
           ReadList(document, "ConnectionInfo", ReadConnection, lists.ImportConnections);
}

}  // namespace

const char* ProjectDocumentImport(int pjtnb, const char* text) {
    if (PjtStartGet(pjtnb)) return "project is runing";
    ImportLists lists;
    if (!ReadDocument(text, lists)) return "Shibai";
    GiveConnectionsDevices(lists);
    Pipe_ProjectInfoClear(pjtnb);
    LinkExpansion(pjtnb, std::move(lists));
    ProjectInfoWrite(ProjectNameGet(pjtnb));
    ProjectDBWrite(ProjectNameGet(pjtnb));
    PjtRefWait(pjtnb);
    return "OK";
}

}  // namespace vorn
