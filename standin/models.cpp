// The model store: the sizes of pipes, ducts and reducers, read out of the models' names. A name that is not
// of the form of a type's models is not in the store.

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <vector>

#include "engine/vorn_core.h"
#include "engine/vorn_type_ids.h"
#include "engine/vorn_var.h"
#include "standin/project.h"
#include "standin/trace.h"

using namespace standin;

namespace {

using std::string_view;

/// The whole numbers in a model's name.
using Numbers = std::vector<int>;

/// Reads numbers with `_` between them and nothing else. False for any other text.
bool ReadNumbers(string_view text, Numbers& numbers) {
    for (;;) {
        int number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || number <= 0) return false;
        numbers.push_back(number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (text.empty()) return true;
        if (!text.starts_with('_')) return false;
        text.remove_prefix(1);
    }
}

/// The value of an item of the type, in millimetres.
struct ModelValue {
    string_view item;
    double value;
};

using ModelValues = std::vector<ModelValue>;

ModelValues Diameter(const Numbers& numbers) {
    return {{"D", static_cast<double>(numbers[0])}};
}

ModelValues Section(const Numbers& numbers) {
    return {{"W", static_cast<double>(numbers[0])}, {"H", static_cast<double>(numbers[1])}};
}

/// 3_8 is three eighths of an inch, 1_3_8 one and three eighths, 2 is two inches.
ModelValues InchDiameter(const Numbers& numbers) {
    constexpr double MillimetresPerInch = 25.4;
    double inches = numbers.size() == 2 ? 0.0 : numbers.front();
    if (numbers.size() > 1) inches += static_cast<double>(numbers.end()[-2]) / numbers.back();
    return {{"D", inches * MillimetresPerInch}};
}

/// How the names of the models of one type are made: a prefix, its numbers, a unit that may be left out, a
/// suffix. A reducer has the size of its start.
struct ModelFamily {
    std::int64_t oneId;
    string_view prefix;
    std::size_t fewestNumbers;
    std::size_t mostNumbers;
    string_view unit;
    string_view suffix;
    ModelValues (*values)(const Numbers&);
};

constexpr ModelFamily Families[] = {
    {PipeOneID, "DN", 1, 1, "", "铸铁管道", Diameter},
    {DuctOneID, "", 2, 2, "", "风管", Section},
    {CopperOneID, "", 1, 3, "英寸", "铜管", InchDiameter},
    {CastIronReducerOneID, "", 2, 2, "", "RDC", Diameter},
    {DuctReducerOneID, "", 4, 4, "", "", Section},
    {CopperReducerOneID, "", 1, 3, "英寸", "铜异径管", InchDiameter},
};

/// The values of the model of that name, none where the type has no such model.
ModelValues ValuesOf(std::int64_t oneId, string_view name) {
    const auto* family = std::find_if(std::begin(Families), std::end(Families),
                                      [oneId](const ModelFamily& each) { return each.oneId == oneId; });
    if (family == std::end(Families)) return {};
    if (!name.starts_with(family->prefix) || !name.ends_with(family->suffix)) return {};
    if (name.size() < family->prefix.size() + family->suffix.size()) return {};
    name.remove_prefix(family->prefix.size());
    name.remove_suffix(family->suffix.size());
    if (name.ends_with(family->unit)) name.remove_suffix(family->unit.size());
    Numbers numbers;
    if (!ReadNumbers(name, numbers)) return {};
    if (numbers.size() < family->fewestNumbers || numbers.size() > family->mostNumbers) return {};
    return family->values(numbers);
}

struct Model {
    int type = -1;
    std::string name;
    ModelValues values;  ///< empty where the store does not have the model
};

/// The model that was read last.
Model& TheModel() {
    // Never destroyed: a request may still run while the process ends.
    static Model& model = *new Model;
    return model;
}

}  // namespace

bool Model_DB_Read(int type, const char* model) {
    Trace("Model_DB_Read", type, model);
    const std::lock_guard guard(EngineLock());
    const ModuleType* found = ModuleTypeFind(type);
    Model& read = TheModel();
    read = {.type = type, .name = model, .values = {}};
    if (found != nullptr) read.values = ValuesOf(found->oneId, read.name);
    return !read.values.empty();
}

void Pjt_Modu_ModelToPch(int slot, int type, int module, int set) {
    Trace("Pjt_Modu_ModelToPch", slot, type, module, set);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    Module* found = project == nullptr ? nullptr : project->modules.Find(module);
    const Model& model = TheModel();
    if (found == nullptr || set < 0 || set >= CacheSetCount) return;
    if (found->type != type || model.type != type) return;

    ElementValues& layer =
        found->layers[static_cast<std::size_t>(CacheLayer0) + static_cast<std::size_t>(set)];
    for (const ModelValue& value : model.values) {
        const int row = ItemRow(ModuleTypeFind(type)->items, value.item);
        if (row >= 0) layer.items[static_cast<std::size_t>(row)] = value.value;
    }
    // The module keeps the name also of a model that the store does not have.
    if (set != 0) return;
    project->shown = NextRevision();
    found->modelId = model.name;
}
