// The content of the open projects: eight slots, each with its tables of modules, nodes and links, its values
// and its run state. Everything here is guarded by the one engine lock; an operation takes it once, at its
// start, and works on the records directly.

#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/vorn_records.h"
#include "engine/vorn_var.h"
#include "standin/catalogue.h"

namespace standin {

inline constexpr std::size_t ProjectNameBytes = 65;  ///< a name of 64 characters and its terminator

/// The layers of an element's values that a project holds, in the order of the item columns 1 to 4.
enum Layer { RunLayer, CacheLayer0, CacheLayer1, CacheLayer2, LayerCount };

/// The values of one port.
struct PortValues {
    double pressure = 0.0;
    double temperature = 0.0;
    double flow = 0.0;
    std::array<double, ArrayEntries> series{};
};

/// One layer of one element's values.
struct ElementValues {
    std::vector<double> items;      ///< by row of the table of items
    std::vector<PortValues> ports;  ///< by port; empty while all are zero
};

/// A run value that a client has taken in hand: what computes or controls it no longer reaches it.
struct HeldValue {
    int port = -1;     ///< -1 for an item
    int variable = 0;  ///< the item's row, or the number of the port's real
    double own = 0.0;  ///< what the value would be if nobody held it
};

/// What modules and nodes have in common.
struct Element {
    bool inUse = false;
    int page = 0;
    int x = 0;  ///< grid units
    int z = 0;
    std::string instanceId;
    std::array<int, PortsPerElement> linksAtPort{};  ///< how many links end at each port
    std::array<ElementValues, LayerCount> layers;
    std::vector<HeldValue> held;  ///< of the run values
};

struct Module : Element {
    int type = -1;
    std::string modelId;    ///< the model that its cache set 0 came from
    std::string important;  ///< the important-value text
    int room = -1;          ///< the room module it stands in, -1 for none
};

struct Node : Element {
    int kind = 0;
};

/// The rows of one kind of element. A row's index is the element's number; vacant rows have `inUse` false.
/// `capacity` bounds the numbers; the lowest vacant number is the next one.
template <typename Row>
struct Table {
    std::vector<Row> rows;
    int capacity = 0;
    int lowestVacant = 0;  ///< no vacant number lies below it

    /// The row of `number`, null when it is vacant or names nothing.
    Row* Find(int number) {
        if (number < 0 || number >= static_cast<int>(rows.size())) return nullptr;
        Row& row = rows[static_cast<std::size_t>(number)];
        return InUse(row) ? &row : nullptr;
    }
    /// The lowest vacant number, -1 when the table is full.
    int NextNumber() {
        while (Find(lowestVacant) != nullptr) ++lowestVacant;
        return lowestVacant < capacity ? lowestVacant : -1;
    }
    /// Puts a row, ready and in use, under a vacant number, so that no half-made one is left where memory
    /// runs out; null when the number is taken or beyond the capacity.
    Row* Add(int number, Row row) {
        if (number < 0 || number >= capacity || Find(number) != nullptr) return nullptr;
        if (number >= static_cast<int>(rows.size())) rows.resize(static_cast<std::size_t>(number) + 1);
        Row& place = rows[static_cast<std::size_t>(number)];
        place = std::move(row);
        return &place;
    }
    void Remove(int number) {
        rows[static_cast<std::size_t>(number)] = Row();
        lowestVacant = std::min(lowestVacant, number);
    }

    static bool InUse(const Element& element) { return element.inUse; }
    static bool InUse(const LinkSxCache& link) { return link.InUse; }
};

/// Finds element numbers by identity. Of two equal texts the lowest number wins.
class IdentityIndex {
  public:
    void Add(const std::string& text, int number) { numbers_[text].insert(number); }
    void Remove(const std::string& text, int number);
    /// -1 when no element bears the text.
    int Find(const std::string& text) const;
    void Clear() { numbers_.clear(); }

  private:
    std::unordered_map<std::string, std::set<int>> numbers_;
};

enum class VariableKind { Real = 0, Integer = 1, RealArray = 2, IntegerArray = 3 };

/// A variable of the project as a whole. An array keeps its entries; a scalar is entry 0.
struct ProjectVariable {
    std::string name;  ///< empty marks a vacant row
    VariableKind kind = VariableKind::Real;
    std::array<double, ArrayEntries> reals{};
    std::array<int, ArrayEntries> integers{};
};

/// The variables that every project has are the first rows and stay there; clients add the others.
enum StandardVariable : std::size_t {
    MeanTemperatureRow,  ///< GTemp
    EnergyRow,           ///< WAll
    CopRow,              ///< COP
    StepsRow,            ///< GStep
    SeriesRow,           ///< GSeries
    CountsRow,           ///< GCounts
    OutsideRow,          ///< GOutside, degrees Celsius outside
    AlarmsRow,           ///< GAlarms
    TimeRow,             ///< GTime
    StepSecondsRow,      ///< GStepSeconds
    RateRow,             ///< GRate
    UntilRow,            ///< GUntil
    LagRow,              ///< GLag
    ScriptRow,           ///< GScript
    StandardVariableCount
};

/// Rows of the table of project variables: 250 of clients beside those that every project has.
inline constexpr std::size_t ProjectVariableCapacity = StandardVariableCount + 250;

/// Numbers of project variables by name, as the last look-ups found them: a hint, good only while the row
/// still bears the name.
struct TextHash : std::hash<std::string_view> {
    using is_transparent = void;
};
using VariableRows = std::unordered_map<std::string, int, TextHash, std::equal_to<>>;

/// A stored file that is known to be whole, as far as its facts are still these.
struct StoredFile {
    std::uintmax_t bytes = 0;
    std::filesystem::file_time_type written;
    bool operator==(const StoredFile&) const = default;
};

/// What becomes of a run's script: the values of `GScript`.
enum class ScriptState { None = 0, Runs = 1, Failed = 2 };

struct PlantKept;

struct Project {
    char name[ProjectNameBytes] = {};  ///< upper case; empty marks a free slot. Its address never changes
    Table<Module> modules;
    Table<Node> nodes;
    Table<LinkSxCache> links;
    IdentityIndex moduleIdentities;
    IdentityIndex nodeIdentities;
    std::vector<ProjectVariable> variables;  ///< a row's index is the variable's number
    VariableRows variableRows;
    std::string script;
    std::uint64_t scriptRevision = 0;  ///< another number after each script that was sent
    std::string scriptFault;           ///< why the run's script failed; empty while it did not
    std::optional<StoredFile> stored;  ///< the file that this content was read from or last written to
    bool started = false;
    bool starting = false;  ///< started, and the controller has not looked at it yet
    bool paused = false;
    int stepRequests = 0;
    std::string access;                ///< why the last start was refused; empty when it was not
    int steps = 0;                     ///< steps since the last start
    double time = 0.0;                 ///< simulated seconds since the last start
    double timeLost = 0.0;             ///< what rounding has left out of `time`
    bool anyHeld = false;              ///< some element may have held values
    int stepsUnsolved = 0;             ///< those of them that found no solution for a net or for the heat
    std::vector<double> temperatures;  ///< GTemp at every `temperatureSteps`-th of them, from the first on
    int temperatureSteps = 1;
    std::uint64_t structure = 0;  ///< another number after each change of modules, nodes, links or rooms
    std::uint64_t shown = 0;      ///< another number after each change of what a snapshot shows
    std::uint64_t run = 0;        ///< another number after each start
    std::shared_ptr<PlantKept> plant;
};

/// True for a project that steps by itself: started, and not paused.
inline bool Runs(const Project& project) {
    return project.started && !project.starting && !project.paused;
}

/// The one lock of the engine.
inline std::mutex engineLock;
inline std::mutex& EngineLock() {
    return engineLock;
}

/// The records of a slot that holds a project, null for any other number. The lock is held.
Project* ProjectFind(int slot);
/// The open project of that name, compared without case; null when there is none. The lock is held.
Project* ProjectFind(std::string_view name);
/// The slot of a project, -1 when it is in none.
int SlotOf(const Project& project);
/// A slot made ready for a new, empty project of that name, in upper case; null when all are taken, when a
/// project of that name is open, here or in another server of the same store, and when the name is empty or
/// too long. The lock is held.
Project* ProjectMake(std::string_view name);
/// The variables that every project has, as its first rows, in the order of `StandardVariable`.
std::vector<ProjectVariable> StandardVariables();
/// Frees the slot. The name's text keeps its address and becomes empty.
void ProjectFree(Project& project);
/// Removes all modules, nodes and links.
void ProjectEmpty(Project& project);
/// The number that `NextRevision` gave last. Another one tells that projects, elements or project variables
/// may have come or gone.
inline std::atomic<std::uint64_t> lastRevision{0};
inline std::uint64_t LastRevision() {
    return lastRevision.load(std::memory_order_acquire);
}
/// A number that no earlier call gave. The lock is held, before and behind the change.
inline std::uint64_t NextRevision() {
    return ++lastRevision;
}

/// Adds an element and readies its values. Null when the number is taken, or the type or kind is unknown.
Module* ModuleAdd(Project& project, int number, int type, int page, int x, int z);
Node* NodeAdd(Project& project, int number, int kind, int page, int x, int z);
/// Adds a link and takes its ports.
bool LinkAdd(Project& project, int number, const LinkSxCache& link);
/// Remove an element that is there, with the links at it.
void ModuleRemove(Project& project, int number);
void NodeRemove(Project& project, int number);
void LinkRemove(Project& project, int number);
/// Give an element that is there its identity, cut to 37 bytes at a character's end.
void ModuleIdentify(Project& project, int number, std::string_view text);
void NodeIdentify(Project& project, int number, std::string_view text);
/// The element of kind 1 (module) or 2 (node), null for any other kind and for a vacant number.
Element* ElementFind(Project& project, int kind, int number);
/// The number of the project variable `name`, -1 when there is none.
int VariableFind(Project& project, std::string_view name);
/// By slot and module, null for a vacant number.
extern std::array<std::array<std::atomic<const ModuleType*>, ModuleCapacity>, SlotCount> publishedTypes;
/// Publishes the types of all modules, for `PublishedTypeFind`. Each addition and removal does so by itself;
/// this serves where whole tables change.
void TypesPublish(const Project& project);
/// The type of a module, null when it is vacant or names nothing. Needs no lock: an analysis asks at each
/// step.
inline const ModuleType* PublishedTypeFind(int slot, int module) {
    if (slot < 0 || slot >= SlotCount || module < 0 || module >= ModuleCapacity) return nullptr;
    return publishedTypes[slot][module].load(std::memory_order_relaxed);
}
/// The port of a module, null when the module is vacant or has no such port.
const PortType* PortFind(Project& project, int module, int port);

}  // namespace standin
