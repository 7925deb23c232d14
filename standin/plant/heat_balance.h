// How heat moves in a plant: makes the task of a step from the flows and the items, and keeps the
// temperatures.

#pragma once

#include <vector>

#include "standin/plant/heat.h"
#include "standin/plant/hydraulics.h"
#include "standin/plant/inputs.h"

namespace standin {

class HeatBalance {
  public:
    explicit HeatBalance(const Layout& layout);

    /// Solves a step. False where the balances are not yet met; the next steps go on with them.
    bool Step(const PlantInputs& inputs, const Hydraulics& hydraulics, double seconds);

    double PointTemperature(int point) const { return At(temperatures_, point); }
    double ContentTemperature(int content) const { return At(temperatures_, FirstContent() + content); }
    /// Of a room or a cold store, by device.
    double RoomTemperature(int device) const { return At(temperatures_, RoomPlace(device)); }
    /// What leaves an aisle at its downstream end.
    double LeavingTemperature(int aisle, const Hydraulics& hydraulics) const;

    struct CircuitState {
        double evaporating = StartTemperature;
        double condensing = StartTemperature;
        double taken = 0.0;  ///< W
        double power = 0.0;  ///< W
        double flow = 0.0;   ///< kg/s
        bool runs = false;
    };
    /// By net; of nets that are no circuits nothing.
    const CircuitState& CircuitAt(int net) const { return At(circuits_, net); }
    /// W that each evaporator and air cooler takes, by its aisle of refrigerant.
    const std::vector<double>& Taken() const { return taken_; }
    /// True for points of a circuit between the expansion valves and the compressors.
    bool LowSide(int point) const { return At(lowSide_, point) != 0; }

  private:
    struct Ends {
        int upstream;
        int downstream;
        double rate;  ///< W/K
    };

    int FirstContent() const { return static_cast<int>(layout_.points.size()); }
    int RoomPlace(int device) const { return At(roomPlaces_, device); }
    int CircuitPlace(int net) const { return At(circuitPlaces_, net); }
    bool IsCircuit(int aisle) const { return At(layout_.nets, At(layout_.aisles, aisle).net).circuit; }
    Ends EndsOf(int aisle, const Hydraulics& hydraulics) const;
    void FindLowSides();
    void AddStreams(const Hydraulics& hydraulics);
    void AddContents(const PlantInputs& inputs, const Hydraulics& hydraulics);
    void AddRooms(const PlantInputs& inputs);
    void AddDevice(const PlantInputs& inputs, const Hydraulics& hydraulics, int device);
    void AddCoupled(const PlantInputs& inputs, const Hydraulics& hydraulics, int device);
    void AddEmitter(const PlantInputs& inputs, const Hydraulics& hydraulics, int device);
    void AddExchanger(const PlantInputs& inputs, const Hydraulics& hydraulics, int device);
    void AddPump(const PlantInputs& inputs, const Hydraulics& hydraulics, int device);
    int Add(const Exchange& exchange);
    void AddCircuits(const PlantInputs& inputs, const Hydraulics& hydraulics);
    void TakeResults();

    const Layout& layout_;
    std::vector<int> roomPlaces_;     ///< by device, -1 for no room; the room's outside is the next place
    std::vector<int> circuitPlaces_;  ///< by net, evaporating; the condensing is the next place
    std::vector<int> deviceCounts_;   ///< that stand in each room, by the room's device
    std::vector<char> lowSide_;       ///< by point
    int ambient_ = 0;
    int pumpLimit_ = 0;
    int placeCount_ = 0;

    HeatTask task_;
    HeatSolver solver_;
    std::vector<double> temperatures_;   ///< by place
    std::vector<int> exchangeOf_;        ///< by aisle, the one of a stream; -1 where it exchanges nothing
    std::vector<char> gives_;            ///< by aisle: it stands at that exchange's giving end
    std::vector<int> evaporatorAisles_;  ///< by exchange, the aisle of refrigerant; -1 for others
    std::vector<std::vector<int>> evaporators_;  ///< exchanges by net
    std::vector<std::vector<int>> condensers_;
    std::vector<CircuitState> circuits_;
    std::vector<double> taken_;
};

}  // namespace standin
