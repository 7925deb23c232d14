#include "import/catalog.h"

#include <set>

#include "engine/vorn_core.h"
#include "engine/vorn_var.h"
#include "import/fitting.h"
#include "standin/project.h"
#include "tests/support/service_test.h"

using namespace vorn;

namespace {

using Sizes = std::vector<double>;

Sizes SizesOf(const FittingRow& row) {
    return {row.SizeX, row.SizeY};
}
Sizes SizesOf(const ReducerRow& row) {
    return {row.StartX, row.StartY, row.EndX, row.EndY};
}

/// Each line of `rows`: a row's number, identity, name and sizes.
template <typename Catalog>
void ExpectRows(const Catalog& catalog, const std::string& rows) {
    std::istringstream lines(rows);
    std::size_t number = 0;
    std::int64_t oneId = 0;
    for (std::string name; lines >> number >> oneId >> name;) {
        EXPECT_EQ(catalog.at(number).OneID, oneId) << name;
        EXPECT_EQ(catalog[number].Name, name);
        for (const double size : SizesOf(catalog[number])) {
            double expected = 0.0;
            EXPECT_TRUE(lines >> expected && size == expected) << name << ' ' << size;
        }
    }
    EXPECT_TRUE(lines.eof());
}

}  // namespace

TEST(CatalogTest, HoldsEachFamilyAtItsPlace) {
    ExpectRows(StraightCatalog, R"(
        0 24032022192805856 DN15铸铁管道 15 15            19 24032022192805856 DN600铸铁管道 600 600
        20 25082921244318233 120_120风管 120 120          33 25082921244318233 320_320风管 320 320
        71 25082921244318233 2000_1250风管 2000 1250      72 25083017561574261 1_4铜管 6.35 6.35
        81 25083017561574261 1_3_8英寸铜管 34.93 34.93    87 25083017561574261 2_1_8英寸铜管 54 54)");
    ExpectRows(ReducerCatalog, R"(
        0 24032321240010392 20_15RDC 20 20 15 15          1 24032321240010392 25_15RDC 25 25 15 15
        6 24032321240010392 40_20RDC 40 40 20 20          53 24032321240010392 600_550RDC 600 600 550 550
        54 25082923170872582 160_120_120_120 160 120 120 120
        102 25082923170872582 400_320_400_320 500 400 400 320
        103 25082923170872582 500_400_400_400 500 400 400 400
        197 25082923170872582 2000_1250_2000_1000 2000 1250 2000 1000
        198 25083018524631661 3_8铜异径管 9.52 9.52 6.35 6.35
        204 25083018524631661 1_1_8铜异径管 28.58 28.58 25.4 25.4
        212 25083018524631661 2_1_8铜异径管 54 54 50.8 50.8)");
}

TEST(CatalogTest, HoldsNoSizesTwiceButFourSquareDucts) {
    std::set<Sizes> sizes;  // two of straight rows, four of reducers
    for (const FittingRow& row : StraightCatalog) sizes.insert(SizesOf(row));
    for (const ReducerRow& row : ReducerCatalog) sizes.insert(SizesOf(row));
    EXPECT_EQ(sizes.size(), StraightRows - 4 + ReducerRows);
}

TEST(FittingTest, ChoosesByBothPortSizesWithinTheTolerances) {
    // Start x and y, end x and y in millimetres, and the model.
    std::istringstream cases(R"(
        0 0 0 0 DN50铸铁管道             250 250 250 250 DN250铸铁管道       320 250 320 250 320_250风管
        9.52 9.52 9.52 9.52 3_8铜管      100 100 80 80 100_80RDC             80 80 100 100 DN50铸铁管道
        500 400 400 320 400_320_400_320  400 320 400 320 400_320风管         54 54 50.8 50.8 2_1_8铜异径管
        100 100 100.0499 99.9501 DN100铸铁管道 100 100 99.9501 100.0499 DN100铸铁管道
        100 100 100.0501 100 DN50铸铁管道      100 100 99.9499 100 DN50铸铁管道
        100 100 100 100.0501 DN50铸铁管道      100 100 100 99.9499 DN50铸铁管道
        100.0049 99.9951 100 100 DN100铸铁管道 99.9951 100.0049 100 100 DN100铸铁管道
        100.0051 100 100 100 DN50铸铁管道      99.9949 100 100 100 DN50铸铁管道
        100 100.0051 100 100 DN50铸铁管道      100 99.9949 100 100 DN50铸铁管道
        100.0499 99.9501 80.0499 79.9501 100_80RDC 99.9501 100.0499 79.9501 80.0499 100_80RDC
        100.0501 100 80 80 DN50铸铁管道        100 99.9499 80 80 DN50铸铁管道
        100 100 80.0501 80 DN50铸铁管道        100 100 80 79.9499 DN50铸铁管道)");
    PortSize start;
    PortSize end;
    std::string model;
    while (cases >> start.x >> start.y >> end.x >> end.y >> model) {
        EXPECT_EQ(FittingFor({start.x / 1000, start.y / 1000}, {end.x / 1000, end.y / 1000}).model, model)
            << start.x << ' ' << start.y << ' ' << end.x << ' ' << end.y;
    }
    EXPECT_TRUE(cases.eof());
}

class ModelStoreTest : public ServiceTest {};

TEST_F(ModelStoreTest, HasAModelForEachRowOfTheCatalogAndNoOther) {
    Send("Create", "P");
    int number = 0;
    // Places a module, gives it the model and gives the items that the model brought.
    const auto modelled = [&](std::int64_t oneId, const char* name, bool known) {
        const int type = ModuleOneID_ToID(oneId);
        ProjectAddModule("P", number, type, 0, 0, 0);
        EXPECT_EQ(Model_DB_Read(type, name), known) << name;
        Pjt_Modu_ModelToPch(0, type, number, 0);
        const standin::Module& module = *standin::ProjectFind(0)->modules.Find(number++);
        EXPECT_EQ(module.modelId, name);
        Sizes sizes = module.layers[standin::CacheLayer0].items;
        sizes.erase(sizes.begin(), sizes.begin() + 2);
        return sizes;
    };
    const auto check = [&](const auto& row) {
        const Sizes sizes = modelled(row.OneID, row.Name, true);
        // The name of one row has other sizes; those of copper are rounded in the catalog.
        if (std::string_view(row.Name) == "400_320_400_320") return;
        const Sizes expected = SizesOf(row);
        for (std::size_t each = 0; each < sizes.size(); ++each) {
            EXPECT_NEAR(sizes[each], expected[each], 0.03) << row.Name;
        }
    };
    for (const FittingRow& row : StraightCatalog) check(row);
    for (const ReducerRow& row : ReducerCatalog) check(row);
    for (const char* name : {"", "DN", "DN铸铁管道", "DN-5铸铁管道", "DN5_5铸铁管道", "DN50铸铁管道 ",
                             "120_120风管", "DN99999999999铸铁管道"}) {
        EXPECT_EQ(modelled(24032022192805856, name, false), Sizes{0}) << name;
    }
    // A model goes only to a module of the type that it was read for.
    Model_DB_Read(0, "DN50铸铁管道");
    Pjt_Modu_ModelToPch(0, 0, 20, 0);
    EXPECT_EQ(standin::ProjectFind(0)->modules.Find(20)->modelId, "120_120风管");
}
