// The plant: hydraulics, heat, refrigerant circuits, protection and alarms of what hangs together by links.
// This is the one public header of the library. It knows nothing of projects, takes no lock and reads no
// clock: the same rows and the same inputs give the same bits again. docs/plant.md lists the equations and
// their sources.

#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

// ---- What a plant is made of ----

/// One port of a type of module. The through ports of a module are flagged: a chain goes on inside the
/// module.
struct PortType {
    bool outlet = false;
    bool through = false;
    int aisle = -1;  ///< the aisle that the port belongs to; -1 for an end port
};

/// The path through a module from an inlet to an outlet.
struct AisleType {
    int inlet = -1;
    int outlet = -1;
};

/// What modules of a type do in the plant.
enum class Role {
    None,  ///< carries what flows through it and does nothing else
    CastIronPipe,
    CopperPipe,
    Duct,
    Pump,
    Valve,
    ExpansionValve,
    Exchanger,
    Condenser,
    Evaporator,
    FanCoil,
    Radiator,
    AirCooler,
    Compressor,
    Tank,
    Tower,
    Receiver,
    Room,
    ColdStore
};

/// A type of module as the plant reads it. The names of the items decide what they are: docs/plant.md lists
/// them.
struct PlantType {
    Role role;
    std::span<const PortType> ports;  ///< at most `PlantPorts`
    std::span<const AisleType> aisles;
    std::span<const std::string_view> items;  ///< the rows of the type's table of items, all reals
    bool reducer = false;                     ///< a pipe or duct with a reducer's loss
};
inline constexpr std::size_t PlantPorts = 4;

/// One end of a link. An end that names nothing makes the link one that carries nothing.
struct PlantEnd {
    enum class Kind { None, Module, Node, Jump };
    Kind kind = Kind::None;
    int number = -1;
    int port = -1;
};
struct PlantLink {
    PlantEnd from;
    PlantEnd to;
};

/// The structure of a plant. Numbers are not below 0.
struct PlantRows {
    struct ModuleRow {
        int number;
        const PlantType* type;  ///< outlives the plant
        int room;               ///< number of the module that it is placed in, -1 for none
    };
    std::vector<ModuleRow> modules;  ///< by rising number
    std::vector<int> nodes;          ///< numbers, rising
    std::vector<PlantLink> links;    ///< of fluids only
};
inline constexpr int FirstNodeOutlet = 8;  ///< the ports of a node from this one on lead out of it
inline constexpr int NodePorts = 16;

// ---- What a step reads and gives. "By module" and "by node" mean the order in `PlantRows`. ----

inline constexpr double StartTemperature = 20.0;  ///< degrees Celsius of all fluid when a plant is made
inline constexpr double UsualOutside = 25.0;      ///< degrees Celsius outside where nothing else is set

/// Any value may be in here, also one that is no number.
struct PlantInputs {
    double outside = UsualOutside;  ///< degrees Celsius around towers and air-cooled condensers
    std::vector<double> items;      ///< of all modules, by module and row, one behind the other
    std::vector<double> vessels;    ///< degrees Celsius in each tank, tower and receiver, by module
};

struct PortState {
    double pressure = 0.0;     ///< kPa over ambient
    double temperature = 0.0;  ///< degrees Celsius
    double flow = 0.0;         ///< kg/s, from the module's inlet to its outlet; into a vessel at its inlet
};

/// A linked port of a node.
struct NodePortState {
    int node;  ///< by node
    int port;
    PortState state;
};

/// An item that a step gives a new value.
struct ItemState {
    int module;  ///< by module
    int row;
    double value;
};

/// Why a compressor stopped itself: the values of its item `Trip`. It stays off until `Trip` is 0 again.
enum class Trip {
    None = 0,
    HighCondensing = 1,    ///< condensing above 65 degrees Celsius
    LowEvaporating = 2,    ///< evaporating below -45 degrees Celsius
    CondenserFlow = 3,     ///< the second side of a condenser does not flow
    EvaporatorFlow = 4,    ///< the second side of an evaporator does not flow
    NothingCirculates = 5  ///< its circuit is shut, or is without an evaporator or a condenser
};

/// What a module reports: the values of its item `Alarm`. Of several the first of this list counts.
enum class Alarm {
    None = 0,
    Tripped = 1,   ///< a compressor with a `Trip`
    Freezing = 2,  ///< water below 0.5 degrees Celsius in it, brine below -13
    Suction = 3,   ///< pressure below -80 kPa at one of its ports
    NoFlow = 4,    ///< a pump that is on and moves nothing
    TooCold = 5,   ///< a room below its `TempLow`
    TooWarm = 6    ///< a room above its `TempHigh`; a band with `TempHigh` not above `TempLow` is none
};

/// What a step gives: finite throughout, whatever it read.
struct PlantOutputs {
    /// By module and port; zero at ports to which nothing is linked.
    std::vector<std::array<PortState, PlantPorts>> ports;
    std::vector<PortState> nodes;          ///< by node; the flow is the sum of what comes in
    std::vector<NodePortState> nodePorts;  ///< by rising node and port
    std::vector<ItemState> items;
    bool hasMeanTemperature = false;  ///< there is a circuit or water
    double meanTemperature = 0.0;     ///< evaporating, or of the water where there is no circuit
    double heatTaken = 0.0;           ///< by the circuits, W
    double power = 0.0;               ///< drawn by pumps and compressors, W
    int nets = 0;
    int circuits = 0;
    int unsolvedNets = 0;
    int alarms = 0;  ///< modules whose `Alarm` is not 0
    bool converged = true;
    std::vector<std::string> faults;  ///< lines that were not given before
};

/// One plant. It is for one thread at a time.
class Plant {
  public:
    explicit Plant(const PlantRows& rows);
    ~Plant();
    Plant(const Plant&) = delete;
    Plant& operator=(const Plant&) = delete;

    /// Computes one step of that many seconds, above 0.
    PlantOutputs Step(const PlantInputs& inputs, double seconds);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace standin
