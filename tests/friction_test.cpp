// What the walls of pipes take from the pressure.

#include "tests/support/plant_test.h"

namespace {

/// The pressure that a metre of a smooth or rough pipe of 20 mm takes, by the formula of Swamee and Jain.
double DropOf(double flow, double roughness) {
    constexpr double Diameter = 0.02;       // m
    constexpr double Density = 998.2;       // kg/m3
    constexpr double Viscosity = 1.002e-3;  // Pa s
    const double speed = flow / (Density * 3.14159265358979 / 4.0 * Diameter * Diameter);
    const double reynolds = Density * speed * Diameter / Viscosity;
    const double factor =
        0.25 / std::pow(std::log10(roughness / Diameter / 3.7 + 5.74 / std::pow(reynolds, 0.9)), 2);
    return factor / Diameter * Density * speed * speed / 2.0 / 1000.0;  // kPa
}

TEST_F(PlantTest, EachKindOfPipeHasItsOwnWall) {
    // At this head the wall decides: without roughness copper would take a tenth less.
    for (const auto& [pipe, roughness] : {std::pair(Pipe, 0.25e-3), {CopperPipe, 0.0015e-3}}) {
        Drawing drawing;
        const int pump = drawing.Add(Pump, {2000, 500});
        const int tested = drawing.Add(pipe, {1, 0, 20});
        drawing.Chain({drawing.Add(Tank), pump, tested, drawing.Add(Tank)});
        MadePlant plant("A", drawing);
        ASSERT_TRUE(standin::PlantStep(plant.Slot(), standin::StepSeconds));
        const double drop = plant.Port(tested, 0).pressure - plant.Port(tested, 1).pressure;
        const double expected = DropOf(plant.Port(tested, 0).flow, roughness);
        EXPECT_NEAR(drop, expected, 0.02 * expected);
        Send("Put", "", "Close");
    }
}

}  // namespace
