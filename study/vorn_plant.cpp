// vorn-plant: runs a plant from its document, without any service, and prints what its variables were as CSV.

#include <atomic>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "elements/instance_id.h"
#include "engine/vorn_core.h"
#include "host/program_start.h"
#include "platform/fault_text.h"
#include "platform/file_text.h"
#include "service/dispatcher.h"
#include "service/service_locks.h"
#include "standin/plant_step.h"
#include "standin/script/script.h"
#include "study/study_options.h"
#include "variables/var_address.h"
#include "variables/var_read.h"
#include "variables/var_write.h"

namespace {

constexpr const char* ProjectName = "STUDY";
constexpr std::size_t MostFileBytes = std::size_t{64} << 20;

/// A new, empty folder that the process works in, so that nothing is read from or left in a store.
class ScratchFolder {
  public:
    ScratchFolder() : before_(std::filesystem::current_path()) {
        std::random_device random;
        do {
            top_ = std::filesystem::temp_directory_path() / ("vorn-plant-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(top_));
        std::filesystem::create_directory(top_ / "run");
        std::filesystem::current_path(top_ / "run");
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
        std::filesystem::remove_all(top_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

  private:
    std::filesystem::path before_;
    std::filesystem::path top_;
};

std::string Send(const char* command, const std::string& name, const std::string& messages) {
    std::string reply;
    const std::lock_guard guard(vorn::DispatchLock);
    vorn::ServerDispatch(command, name, messages, reply);
    return reply;
}

/// The whole name of a variable that a user names without the project, by number or by InstanceID: `GTemp`,
/// `MOD7_Opening`, `office 1_InsideTemperature`. Empty for one that the plant does not have.
std::string WholeName(const std::string& name) {
    const std::string project = std::string(ProjectName) + '_';
    const auto known = [](const std::string& whole) {
        vorn::VarAddress address;
        return vorn::VarFind(whole.c_str(), address);
    };
    if (known(project + name)) return project + name;
    for (std::size_t end = name.find('_'); end != std::string::npos; end = name.find('_', end + 1)) {
        int number = -1;
        const int slot = ProjectNameToID(ProjectName);
        const int kind = vorn::InstanceIdResolve(slot, name.substr(0, end).c_str(), number);
        if (kind == NoKind || number < 0) continue;
        const std::string whole = project + vorn::InstanceIdText(kind, number) + name.substr(end);
        if (known(whole)) return whole;
    }
    return {};
}

/// Reads a real or an integer.
standin::ScriptAccess NumberRead(std::string_view name, double& value) {
    const std::string whole = WholeName(std::string(name));
    if (whole.empty()) return standin::ScriptAccess::Unknown;
    const std::string text = vorn::VarGetByName(whole.c_str());
    if (text.find(',') != std::string::npos) return standin::ScriptAccess::Array;
    value = std::stod(text);
    return standin::ScriptAccess::Done;
}

standin::ScriptAccess NumberWrite(std::string_view name, double value) {
    double before = 0.0;
    const standin::ScriptAccess access = NumberRead(name, before);
    if (access != standin::ScriptAccess::Done) return access;
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", std::isfinite(value) ? value : 0.0);
    vorn::VarSetByName(WholeName(std::string(name)).c_str(), text);
    return standin::ScriptAccess::Done;
}

/// Sets cache set 0 by the lines `ELEMENT|ROW|VALUE` of a text. False with the first line that is refused.
bool ValuesSet(const std::string& text, std::string& refused) {
    std::istringstream lines(text);
    while (std::getline(lines, refused)) {
        if (!refused.empty() && refused.back() == '\r') refused.pop_back();
        if (refused.empty()) continue;
        const std::size_t valueBar = refused.rfind('|');
        const std::size_t rowBar = valueBar == 0 ? std::string::npos : refused.rfind('|', valueBar - 1);
        if (valueBar == std::string::npos || rowBar == std::string::npos) return false;
        const std::string row = refused.substr(rowBar + 1, valueBar - rowBar - 1);
        const std::string value = refused.substr(valueBar + 1);
        if (row.empty() || row.find_first_not_of("0123456789") != std::string::npos || row.size() > 4)
            return false;
        if (value.empty() || value.find_first_not_of("0123456789.+-eE") != std::string::npos) return false;
        const std::string reply =
            Send("VarCacheSet", std::string(ProjectName) + '_' + refused.substr(0, rowBar),
                 "{\"Row\":" + row + ",\"Column\":1,\"Value\":\"" + value + "\"}");
        if (reply != "OK") return false;
    }
    return true;
}

int Fail(const std::string& text) {
    std::fprintf(stderr, "vorn-plant: %s\n", text.c_str());
    return 1;
}

/// The texts of the files of a study, as far as it names them.
struct StudyTexts {
    std::string plant, values, script;
};

bool TextsRead(const StudyOptions& options, StudyTexts& texts, std::string& fault) {
    for (const auto& [file, text] :
         {std::pair(&options.plant, &texts.plant), std::pair(&options.values, &texts.values),
          std::pair(&options.script, &texts.script)}) {
        std::error_code error;
        if (file->empty() || vorn::FileRead(*file, MostFileBytes, *text, error)) continue;
        fault = *file + ": " + vorn::FaultText(error);
        return false;
    }
    return true;
}

/// Makes the project. The empty text, or what is wrong.
std::string PlantMake(const StudyTexts& texts) {
    if (ProjectJsonAdd(ProjectName) == 0) return "the project cannot be made";
    const std::string reply = Send("PjtSent", ProjectName, texts.plant);
    if (reply != "OK") return "the plant is refused: " + reply;
    std::string line;
    if (!ValuesSet(texts.values, line)) return "this line of the values is refused: " + line;
    ProjectAllCacheInToRun(ProjectNameToID(ProjectName), 0);
    return {};
}

void RowPrint(double seconds, const std::vector<std::string>& names) {
    std::printf("%.10g", seconds);
    for (const std::string& name : names) std::printf(",%s", vorn::VarGetByName(name.c_str()).c_str());
    std::printf("\n");
}

/// Prints a field of CSV, in quotes where it needs them.
void FieldPrint(const std::string& text) {
    if (text.find_first_of(",\"\n") == std::string::npos) {
        std::printf(",%s", text.c_str());
        return;
    }
    std::string quoted;
    for (const char character : text)
        quoted += character == '"' ? std::string("\"\"") : std::string(1, character);
    std::printf(",\"%s\"", quoted.c_str());
}

int Run(const StudyOptions& options, const StudyTexts& texts) {
    std::vector<std::string> names;
    for (const std::string& name : options.names) {
        names.push_back(WholeName(name));
        if (names.back().empty()) return Fail("the plant has no variable " + name);
    }
    std::printf("seconds");
    for (const std::string& name : options.names) FieldPrint(name);
    std::printf("\n");
    standin::Script script(texts.script, {NumberRead, NumberWrite, [](std::string_view line) {
                                              std::cerr << "script: " << line << '\n';
                                          }});
    const int slot = ProjectNameToID(ProjectName);
    const auto steps = static_cast<long long>(std::ceil(options.until / options.step - 1e-9));
    double printed = 0.0;
    for (long long step = 0; step < steps; ++step) {
        const double before = static_cast<double>(step) * options.step;
        if (!script.Step(before, options.step)) return Fail(script.Fault());
        if (!standin::PlantStep(slot, options.step)) return Fail("a step could not be made");
        const double now = before + options.step;
        if (now < printed + options.every - 1e-9 && step + 1 < steps) continue;
        printed = std::floor(now / options.every + 1e-9) * options.every;
        RowPrint(now, names);
    }
    return std::fflush(stdout) == 0 ? 0 : Fail("the rows cannot be written");
}

}  // namespace

int main(int count, char** arguments) {
    char** const words = ProgramStart(count, arguments);
    StudyOptions options;
    if (const auto status = StudyOptionsRead(count, words, options)) return *status;
    StudyTexts texts;
    std::string fault;
    int status = 1;
    try {
        if (!TextsRead(options, texts, fault)) return Fail(fault);
        const ScratchFolder folder;
        fault = PlantMake(texts);
        status = fault.empty() ? Run(options, texts) : Fail(fault);
    } catch (const std::exception& mishap) {
        return Fail(mishap.what());
    }
    ProgramEnd(status);
}
