#include "import/catalog.h"

#include <cstdio>

#include "engine/vorn_core.h"
#include "engine/vorn_var.h"
#include "import/fitting.h"
#include "standin/catalogue.h"
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

/// A digest (FNV-1a) of all rows: identity, name and sizes with two decimals, a line each.
template <typename Catalog>
std::uint64_t Digest(const Catalog& catalog) {
    std::uint64_t digest = 0xcbf29ce484222325U;
    for (const auto& row : catalog) {
        std::string line = std::to_string(row.OneID) + " " + row.Name;
        for (const double size : SizesOf(row)) {
            char text[16];
            std::snprintf(text, sizeof text, " %.2f", size);
            line += text;
        }
        for (const char byte : line + "\n") {
            digest = (digest ^ static_cast<unsigned char>(byte)) * 0x100000001b3U;
        }
    }
    return digest;
}

}  // namespace

TEST(CatalogTest, HoldsEachRowAtItsPlace) {
    // The digests come of rows that were written out of the published tables, apart from the code.
    EXPECT_EQ(Digest(StraightCatalog), 0x5bc1eb7b8ad59af8U);
    EXPECT_EQ(Digest(ReducerCatalog), 0x7a523a1ad3d59564U);
    EXPECT_EQ(StraightCatalog.at(5).Name, std::string_view("DN50铸铁管道"));
}

TEST(FittingTest, ChoosesByBothPortSizesWithinTheTolerances) {
    // Start x and y, end x and y in millimetres, and the model.
    const auto rows = RowsOf(R"(
        0 0 0 0->DN50铸铁管道; 250 250 250 250->DN250铸铁管道; 320 250 320 250->320_250风管;
        9.52 9.52 9.52 9.52->3_8铜管; 100 100 80 80->100_80RDC; 80 80 100 100->DN50铸铁管道;
        500 400 400 320->400_320_400_320; 400 320 400 320->400_320风管;
        54 54 50.8 50.8->2_1_8铜异径管; 100 100 100.0499 99.9501->DN100铸铁管道;
        100 100 99.9501 100.0499->DN100铸铁管道; 100 100 100.0501 100->DN50铸铁管道;
        100 100 99.9499 100->DN50铸铁管道; 100 100 100 100.0501->DN50铸铁管道;
        100 100 100 99.9499->DN50铸铁管道; 100.0049 99.9951 100 100->DN100铸铁管道;
        99.9951 100.0049 100 100->DN100铸铁管道; 100.0051 100 100 100->DN50铸铁管道;
        99.9949 100 100 100->DN50铸铁管道; 100 100.0051 100 100->DN50铸铁管道;
        100 99.9949 100 100->DN50铸铁管道; 100.0499 99.9501 80.0499 79.9501->100_80RDC;
        99.9501 100.0499 79.9501 80.0499->100_80RDC; 100.0501 100 80 80->DN50铸铁管道;
        100 99.9499 80 80->DN50铸铁管道; 100 100 80.0501 80->DN50铸铁管道; 100 100 80 79.9499->DN50铸铁管道;)");
    for (const Row& row : rows) {
        PortSize start;
        PortSize end;
        std::istringstream(row.given) >> start.x >> start.y >> end.x >> end.y;
        EXPECT_EQ(FittingFor({start.x / 1000, start.y / 1000}, {end.x / 1000, end.y / 1000}).model,
                  row.wanted)
            << row.given;
    }
    EXPECT_EQ(rows.size(), 27U);
}

TEST(CatalogueTest, FindsItsOwnTypesByTheirFormerNumbersToo) {
    for (std::int64_t own = 11; own <= 22; ++own) {
        const std::int64_t oneId = 2601010000000 + own;
        const int type = standin::ModuleTypeNumber(oneId);
        ASSERT_NE(type, -1) << oneId;
        EXPECT_EQ(standin::ModuleTypeNumber(26010100000000000 + own), type);
        EXPECT_EQ(standin::ModuleTypeFind(type)->oneId, oneId) << "the number that is given out";
    }
    for (const std::int64_t none : {2601010000010, 2601010000023, 26010100000000010, 26010100000000023}) {
        EXPECT_EQ(standin::ModuleTypeNumber(none), -1) << none;
    }
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
