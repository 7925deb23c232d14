// The example plants under their scripts: a week each, and faults that raise an alarm and are mended.

#include <fstream>
#include <iterator>

#include "tests/support/plant_test.h"

using standin::PlantStep;

namespace {

constexpr double StepLength = 30.0;  // s
constexpr int StepsOfAnHour = 120;

std::string ExampleText(const std::string& file) {
    std::ifstream stream(std::string(VORN_SOURCE_DIR) + "/examples/" + file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Temperatures within which a variable has to stay once the plant has come to rest.
struct Band {
    std::string name;
    double low, high;
};

class ExamplesTest : public PlantTest {
  protected:
    /// Opens the example in slot 0 with its start values and its script, and starts it.
    static void Start(const std::string& example) {
        ASSERT_EQ(Send("Create", "P"), "OK");
        ASSERT_EQ(Send("PjtSent", "P", ExampleText(example + ".json")), "OK");
        std::istringstream values(ExampleText(example + ".values"));
        for (std::string element, row, value; std::getline(values, element, '|') &&
                                              std::getline(values, row, '|') && std::getline(values, value);)
            ASSERT_EQ(Send("VarCacheSet", "P_" + element,
                           R"({"Row":)" + row + R"(,"Column":1,"Value":")" + value + "\"}"),
                      "OK");
        ASSERT_EQ(Send("LuaSent", "P", ExampleText(example + ".lua")), "OK");
        ASSERT_EQ(Send("PjtRun", "P"), "OK");
    }
    static void Hours(int hours) {
        for (int step = 0; step < hours * StepsOfAnHour; ++step) ASSERT_TRUE(PlantStep(0, StepLength));
        ASSERT_EQ(Get("P_GScript"), 1.0) << Send("ImportantGet", "P");
    }
    static void ExpectIn(const std::vector<Band>& bands) {
        for (const Band& band : bands) {
            EXPECT_GE(Get("P_" + band.name), band.low) << band.name << " at " << Get("P_GTime");
            EXPECT_LE(Get("P_" + band.name), band.high) << band.name << " at " << Get("P_GTime");
        }
    }
    static void Set(const std::string& name, const std::string& value) {
        ASSERT_EQ(Send("Set", "P_" + name, value), "OK") << name;
    }
};

const std::vector<Band> Offices{
    {"office 1_InsideTemperature", 21, 26}, {"office 2_InsideTemperature", 21, 26},
    {"office 3_InsideTemperature", 21, 26}, {"evaporator 1_IM1_TEMP", 2, 40},
    {"evaporator 2_IM1_TEMP", 2, 40},       {"GAlarms", 0, 0}};
const std::vector<Band> Stores{{"cold room_BKT_TEMP", -23, -17},
                               {"packing room_InsideTemperature", 10, 14},
                               {"evaporator_IM3_TEMP", -12, 25},
                               {"condenser_IM3_TEMP", 2, 60},
                               {"GAlarms", 0, 0}};

TEST_F(ExamplesTest, AWeekUnderItsScriptStaysInItsBand) {
    const std::pair<const char*, std::vector<Band>> rows[] = {
        {"chilled_water_plant", Offices},
        {"cold_store", Stores},
        {"air_handling_system",
         {{"hall 1_InsideTemperature", 19, 27}, {"lab 3_InsideTemperature", 19, 27}, {"GAlarms", 0, 0}}}};
    for (const auto& [example, bands] : rows) {
        SCOPED_TRACE(example);
        Start(example);
        Hours(6);
        for (int hour = 6; hour < 7 * 24 && !HasFailure(); ++hour) {
            ExpectIn(bands);
            Hours(1);
        }
        EXPECT_NEAR(Get("P_GTime"), 7 * 86400.0, 1e-6);
        Send("PjtClose", "P");
    }
}

TEST_F(ExamplesTest, AFaultRaisesItsAlarmAndItsResetBringsThePlantBack) {
    // What is set at noon, what shows the fault four hours later, and what mends it.
    const struct {
        const char *example, *fault, *shown;
        double alarm;
        const char* mended;
        const std::vector<Band>& bands;
    } rows[] = {
        {"chilled_water_plant", "tower pump 1_Head_HELD 1; tower pump 1_Head 0", "compressor 1_Trip", 3,
         "tower pump 1_Head_HELD 0; compressor 1_Trip 0", Offices},
        {"chilled_water_plant",
         "coil valve 1_Opening_HELD 1; coil valve 1_Opening 0; coil valve 2_Opening_HELD 1; coil valve "
         "2_Opening 0",
         "office 1_Alarm", 6, "coil valve 1_Opening_HELD 0; coil valve 2_Opening_HELD 0", Offices},
        {"cold_store", "tower pump_Head_HELD 1; tower pump_Head 0", "compressor_Trip", 3,
         "tower pump_Head_HELD 0; compressor_Trip 0", Stores},
    };
    const auto sets = [](const char* text) {
        for (const std::string& set : Split(text)) {
            const std::size_t blank = set.rfind(' ');
            Set(set.substr(0, blank), set.substr(blank + 1));
        }
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.example) + ": " + row.fault);
        Start(row.example);
        Hours(12);
        ExpectIn(row.bands);
        sets(row.fault);
        Hours(4);
        EXPECT_EQ(Get(std::string("P_") + row.shown), row.alarm);
        EXPECT_GE(Get("P_GAlarms"), 1.0);
        sets(row.mended);
        Hours(12);
        ExpectIn(row.bands);
        Send("PjtClose", "P");
    }
}

TEST_F(ExamplesTest, AnOpenDoorRaisesTheAlarmOfItsRoom) {
    Start("cold_store");
    Hours(6);
    for (int step = 0; step < 10; ++step) {
        Set("cold room_BKT_TEMP", "-5");
        ASSERT_TRUE(PlantStep(0, StepLength));
    }
    EXPECT_EQ(Get("P_cold room_Alarm"), 6.0);
    Hours(6);
    ExpectIn(Stores);
}

}  // namespace
