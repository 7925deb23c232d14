// Values written and read by name, held against the C library's own reading and printing; and batches held
// against single requests. An input is a value's text.

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "tests/fuzz/front.h"

namespace {

constexpr const char* Names[] = {"P_GTemp", "P_GStep", "P_GSeries", "P_GCounts"};
constexpr std::size_t Entries = 8;

std::string Printed(const char* format, double value) {
    char text[400];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

int ToInt(double value, int low, int high) {
    if (std::isnan(value)) return 0;
    return static_cast<int>(std::clamp<double>(value, low, high));
}

/// A scalar real; the engine stores 0 for a number that is not finite.
std::string RealExpected(const std::string& text) {
    const double value = std::strtod(text.c_str(), nullptr);
    return Printed("%f", std::isfinite(value) ? value : 0.0);
}

std::string IntExpected(const std::string& text) {
    using Limits = std::numeric_limits<int>;
    return std::to_string(ToInt(std::strtod(text.c_str(), nullptr) + 0.001, Limits::min(), Limits::max()));
}

std::vector<double> EntriesOf(const std::string& text) {
    std::vector<double> values;
    for (std::size_t at = 0; values.size() < Entries && at <= text.size();) {
        const std::size_t end = std::min(text.find(',', at), text.size());
        values.push_back(std::strtod(text.substr(at, std::min<std::size_t>(end - at, 191)).c_str(), nullptr));
        at = end + 1;
    }
    values.resize(Entries);
    return values;
}

std::string SeriesExpected(const std::string& text) {
    constexpr double Limit = 9999999999999.0;
    std::string list;
    for (const double value : EntriesOf(text)) {
        list += Printed("%.8f,", std::isfinite(value) ? std::clamp(value, -Limit, Limit) : 0.0);
    }
    return list.substr(0, list.size() - 1);
}

std::string CountsExpected(const std::string& text) {
    constexpr int Limit = 2147483640;
    std::string list;
    for (const double value : EntriesOf(text))
        list += std::to_string(ToInt(value + 0.01, -Limit, Limit)) + ",";
    return list.substr(0, list.size() - 1);
}

/// A batch that writes `text` to all names, and one that reads them.
void CheckBatch(const std::string& text, const std::vector<std::string>& expected) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer writer(buffer);
    writer.StartObject();
    writer.Key("VarName");
    writer.StartArray();
    for (const char* name : Names) writer.String(name);
    writer.EndArray();
    writer.Key("VarValue");
    writer.StartArray();
    for (std::size_t name = 0; name < std::size(Names); ++name) {
        writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }
    writer.EndArray();
    writer.EndObject();
    Require(Ask("Set", "json", buffer.GetString()) == R"(["OK","OK","OK","OK"])", "a batch is written", text);
    std::string list = "[";
    for (const std::string& each : expected) list += (list.size() > 1 ? ",\"" : "\"") + each + '"';
    const std::string read = Ask("Get", "json", buffer.GetString());
    Require(read == list + "]", "a batch reads what single requests read", read);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    BeginFresh();
    Ask("Create", "P");
    const std::string text(Text(bytes, size).substr(0, Text(bytes, size).find('\0')));
    const std::vector<std::string> expected{RealExpected(text), IntExpected(text), SeriesExpected(text),
                                            CountsExpected(text)};
    for (std::size_t name = 0; name < expected.size(); ++name) {
        Require(Ask("Set", Names[name], text) == "OK", "a value is written", text);
        const std::string read = Ask("Get", Names[name]);
        Require(read == expected[name], expected[name].c_str(), read);
    }
    CheckBatch(text, expected);
    return 0;
}
