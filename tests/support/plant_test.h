// A fixture for tests of the stand-in's plant: a folder of its own, and no steps but those that the test
// makes.

#pragma once

#include <cmath>
#include <sstream>
#include <string>

#include "standin/plant_step.h"
#include "tests/support/made_plant.h"
#include "tests/support/service_test.h"
#include "tests/support/working_folder.h"

class PlantTest : public ServiceTest {
  protected:
    PlantTest() { standin::SimulationKeepOff(true); }

  private:
    WorkingFolder folder_;
};

/// A value by its name.
inline double Get(const std::string& name) {
    const std::string text = Send("Get", name);
    double value = std::nan("");
    EXPECT_TRUE(std::istringstream(text) >> value) << name << ": " << text;
    return value;
}

/// The first entry of one of the variables that every project has, by its row.
inline double ProjectReal(const MadePlant& plant, std::size_t variable) {
    return plant.Records().variables[variable].reals[0];
}
inline int ProjectCount(const MadePlant& plant, std::size_t entry) {
    return plant.Records().variables[5].integers.at(entry);
}

inline constexpr double WaterHeat = 4182.0;  // J/(kg K)
