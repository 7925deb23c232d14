// What the walls of pipes take from the pressure.

#include <numbers>

#include "tests/support/plant_test.h"

namespace {

/// The pressure in kPa that a metre of a pipe of 20 mm takes of a flow in kg/s, by the formula of Swamee and
/// Jain.
double DropOf(double flow, double roughness, double density, double viscosity) {
    constexpr double Diameter = 0.02;  // m
    const double speed = flow / (density * std::numbers::pi / 4.0 * Diameter * Diameter);
    const double reynolds = speed * Diameter / viscosity;
    const double wall = roughness / Diameter / 3.7 + 5.74 / std::pow(reynolds, 0.9);
    return 0.25 / std::pow(std::log10(wall), 2) / Diameter * density * speed * speed / 2.0 / 1000.0;
}

TEST_F(PlantTest, EachKindOfPipeHasItsOwnWall) {
    // Copper among ducts carries air; water is in cast iron.
    const struct {
        int end, pipe, further;
        double roughness, density, viscosity;
    } cases[] = {{Tank, Pipe, Pipe, 0.25e-3, 998.2, 1.004e-6},
                 {Receiver, CopperPipe, Duct, 0.0015e-3, 1.204, 1.506e-5}};
    for (const auto& each : cases) {
        Drawing drawing;
        const int pump = drawing.Add(Pump, {2000, 500});
        const int tested = drawing.Add(each.pipe, {1, 0, 20});
        drawing.Chain(
            {drawing.Add(each.end), pump, tested, drawing.Add(each.further), drawing.Add(each.end)});
        MadePlant plant("A", drawing);
        ASSERT_TRUE(standin::PlantStep(plant.Slot(), standin::StepSeconds));
        const double drop = plant.Port(tested, 0).pressure - plant.Port(tested, 1).pressure;
        const double expected =
            DropOf(plant.Port(tested, 0).flow, each.roughness, each.density, each.viscosity);
        ASSERT_GT(drop, 1.0) << each.pipe;
        EXPECT_NEAR(drop, expected, 0.02 * expected) << each.pipe;
        Send("Put", "", "Close");
    }
}

}  // namespace
