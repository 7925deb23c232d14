#include "import/catalog.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "engine/vorn_type_ids.h"

namespace vorn {

namespace {

// ---- The series of sizes, in millimetres ----

/// Nominal diameters.
constexpr int CastIronSeries[] = {15,  20,  25,  32,  40,  50,  65,  80,  100, 125,
                                  150, 200, 250, 300, 350, 400, 450, 500, 550, 600};

/// A duct's width and its heights; 0 ends a row.
struct DuctWidth {
    int width;
    int heights[7];
};

constexpr DuctWidth DuctSeries[] = {
    {120, {120}},
    {160, {120, 160}},
    {200, {120, 160, 200}},
    {250, {120, 160, 200, 250}},
    {320, {160, 200, 250, 320}},
    {400, {200, 250, 320, 400}},
    {500, {200, 250, 320, 400, 500}},
    {630, {250, 320, 400, 500, 630}},
    {800, {320, 400, 500, 630, 800}},
    {1000, {320, 400, 500, 630, 800, 1000}},
    {1250, {400, 500, 630, 800, 1000}},
    {1600, {500, 630, 800, 1000, 1250}},
    {2000, {800, 1000, 1250}},
};

/// The sizes are as the makers list them: 9.52, not 9.525.
struct CopperSize {
    std::string_view stem;
    std::string_view reducerStem;  ///< of the reducer that starts at this size
    double size;
};

constexpr CopperSize CopperSeries[] = {
    {"1_4", "", 6.35},
    {"3_8", "3_8", 9.52},
    {"1_2", "1_2", 12.7},
    {"5_8", "5_8", 15.9},
    {"3_4", "3_4", 19.05},
    {"7_8", "7_8", 22.2},
    {"1英寸", "1英寸", 25.4},
    {"1_1_8英寸", "1_1_8", 28.58},
    {"1_1_4英寸", "1_1_4", 31.75},
    {"1_3_8英寸", "1_3_8", 34.93},
    {"1_1_2英寸", "1_1_2", 38.1},
    {"1_5_8英寸", "1_5_8", 41.3},
    {"1_3_4英寸", "1_3_4", 44.45},
    {"1_7_8英寸", "1_7_8", 47.63},
    {"2英寸", "2英寸", 50.8},
    {"2_1_8英寸", "2_1_8", 54.0},
};

/// A duct reducer: width and height of its start, then of its end.
struct DuctReducer {
    int startX;
    int startY;
    int endX;
    int endY;
};

/// As the names have them; the choice follows no short rule.
constexpr DuctReducer DuctReducers[] = {
    {160, 120, 120, 120},    {160, 160, 120, 120},     {160, 160, 160, 120},    {200, 120, 160, 120},
    {200, 160, 160, 120},    {200, 160, 160, 160},     {200, 200, 200, 120},    {200, 200, 200, 160},
    {250, 120, 200, 120},    {250, 160, 200, 120},     {250, 160, 200, 160},    {250, 200, 200, 120},
    {250, 200, 200, 160},    {250, 200, 200, 200},     {250, 250, 250, 120},    {250, 250, 250, 160},
    {250, 250, 250, 200},    {320, 160, 250, 120},     {320, 160, 250, 160},    {320, 200, 250, 120},
    {320, 200, 250, 160},    {320, 200, 250, 200},     {320, 250, 250, 160},    {320, 250, 250, 200},
    {320, 250, 250, 250},    {320, 320, 320, 160},     {320, 320, 320, 200},    {320, 320, 320, 250},
    {400, 200, 320, 160},    {400, 200, 320, 200},     {400, 250, 320, 160},    {400, 250, 320, 200},
    {400, 250, 320, 250},    {400, 320, 320, 160},     {400, 320, 320, 200},    {400, 320, 320, 250},
    {400, 320, 320, 320},    {400, 400, 400, 200},     {400, 400, 400, 250},    {400, 400, 400, 320},
    {500, 200, 400, 200},    {500, 250, 400, 200},     {500, 250, 400, 250},    {500, 320, 400, 200},
    {500, 320, 400, 250},    {500, 320, 400, 320},     {500, 400, 400, 200},    {500, 400, 400, 250},
    {400, 320, 400, 320},    {500, 400, 400, 400},     {500, 500, 500, 200},    {500, 500, 500, 250},
    {500, 500, 500, 320},    {500, 500, 500, 400},     {630, 250, 500, 200},    {630, 250, 500, 250},
    {630, 320, 500, 200},    {630, 320, 500, 250},     {630, 320, 500, 320},    {630, 400, 500, 200},
    {630, 400, 500, 250},    {630, 400, 500, 320},     {630, 400, 500, 400},    {630, 500, 500, 200},
    {630, 500, 500, 250},    {630, 500, 500, 320},     {630, 500, 500, 400},    {630, 500, 500, 500},
    {630, 630, 630, 250},    {630, 630, 630, 320},     {630, 630, 630, 400},    {630, 630, 630, 500},
    {800, 320, 630, 250},    {800, 320, 630, 320},     {800, 400, 630, 250},    {800, 400, 630, 320},
    {800, 400, 630, 400},    {800, 500, 630, 250},     {800, 500, 630, 320},    {800, 500, 630, 400},
    {800, 500, 630, 500},    {800, 630, 630, 320},     {800, 630, 630, 400},    {800, 630, 630, 500},
    {800, 630, 630, 630},    {800, 800, 800, 320},     {800, 800, 800, 400},    {800, 800, 800, 500},
    {800, 800, 800, 630},    {1000, 320, 800, 320},    {1000, 400, 800, 320},   {1000, 400, 800, 400},
    {1000, 500, 800, 320},   {1000, 500, 800, 400},    {1000, 500, 800, 500},   {1000, 630, 800, 400},
    {1000, 630, 800, 500},   {1000, 630, 800, 630},    {1000, 800, 800, 500},   {1000, 800, 800, 630},
    {1000, 800, 800, 800},   {1000, 1000, 1000, 320},  {1000, 1000, 1000, 400}, {1000, 1000, 1000, 500},
    {1000, 1000, 1000, 630}, {1000, 1000, 1000, 800},  {1250, 400, 1000, 320},  {1250, 400, 1000, 400},
    {1250, 500, 1000, 320},  {1250, 500, 1000, 400},   {1250, 500, 1000, 500},  {1250, 630, 1000, 400},
    {1250, 630, 1000, 500},  {1250, 630, 1000, 630},   {1250, 800, 1000, 500},  {1250, 800, 1000, 630},
    {1250, 800, 1000, 800},  {1250, 1000, 1250, 400},  {1250, 1000, 1250, 500}, {1250, 1000, 1250, 630},
    {1250, 1000, 1250, 800}, {1600, 500, 1250, 400},   {1600, 500, 1250, 500},  {1600, 630, 1250, 400},
    {1600, 630, 1250, 500},  {1600, 630, 1250, 630},   {1600, 800, 1250, 500},  {1600, 800, 1250, 630},
    {1600, 800, 1250, 800},  {1600, 1000, 1250, 630},  {1600, 1000, 1250, 800}, {1600, 1000, 1250, 1000},
    {1600, 1250, 1600, 500}, {1600, 1250, 1600, 630},  {1600, 1250, 1600, 800}, {1600, 1250, 1600, 1000},
    {2000, 800, 1600, 500},  {2000, 800, 1600, 630},   {2000, 800, 1600, 800},  {2000, 1000, 1600, 630},
    {2000, 1000, 1600, 800}, {2000, 1000, 1600, 1000}, {2000, 1250, 2000, 800}, {2000, 1250, 2000, 1000},
};

/// The row whose name and sizes differ: it is named "400_320_400_320", where the order of the rows asks for
/// these sizes.
constexpr std::size_t MisnamedDuctReducer = 102;
constexpr DuctReducer MisnamedSizes{500, 400, 400, 320};

/// The most next smaller diameters that a cast-iron reducer leads to.
constexpr std::size_t CastIronReducerEnds = 3;

// ---- The rows ----

/// Writes a model name piece by piece. A name that does not fit ends the build of the catalog.
class NameWriter {
  public:
    constexpr explicit NameWriter(char (&name)[IdentityBytes]) : name_(name) {}

    constexpr NameWriter& Add(std::string_view text) {
        for (const char character : text) {
            if (length_ == IdentityBytes - 1) throw "a model name is too long";
            name_[length_++] = character;
        }
        return *this;
    }
    constexpr NameWriter& Add(int number) {
        char digits[10] = {};
        std::size_t count = 0;
        for (; number > 0; number /= 10) digits[count++] = static_cast<char>('0' + number % 10);
        std::reverse(digits, digits + count);
        return Add(std::string_view(digits, count));
    }

  private:
    char (&name_)[IdentityBytes];
    std::size_t length_ = 0;
};

constexpr FittingRow StraightRow(std::int64_t oneId, double sizeX, double sizeY) {
    return {.OneID = oneId, .SizeX = sizeX, .SizeY = sizeY};
}

constexpr ReducerRow RoundReducer(std::int64_t oneId, double start, double end) {
    return {.OneID = oneId, .StartX = start, .StartY = start, .EndX = end, .EndY = end};
}

constexpr ReducerRow SizedReducer(const DuctReducer& sizes) {
    return {.OneID = DuctReducerOneID,
            .StartX = static_cast<double>(sizes.startX),
            .StartY = static_cast<double>(sizes.startY),
            .EndX = static_cast<double>(sizes.endX),
            .EndY = static_cast<double>(sizes.endY)};
}

constexpr auto BuildStraightCatalog() {
    std::array<FittingRow, StraightRows> rows;
    std::size_t count = 0;
    for (const int diameter : CastIronSeries) {
        rows[count] = StraightRow(PipeOneID, diameter, diameter);
        NameWriter(rows[count++].Name).Add("DN").Add(diameter).Add("铸铁管道");
    }
    for (const DuctWidth& duct : DuctSeries) {
        for (const int height : duct.heights) {
            if (height == 0) break;
            rows[count] = StraightRow(DuctOneID, duct.width, height);
            NameWriter(rows[count++].Name).Add(duct.width).Add("_").Add(height).Add("风管");
        }
    }
    for (const CopperSize& copper : CopperSeries) {
        rows[count] = StraightRow(CopperOneID, copper.size, copper.size);
        NameWriter(rows[count++].Name).Add(copper.stem).Add("铜管");
    }
    if (count != StraightRows) throw "rows are missing";
    return rows;
}

constexpr auto BuildReducerCatalog() {
    std::array<ReducerRow, ReducerRows> rows;
    std::size_t count = 0;
    for (std::size_t start = 1; start < std::size(CastIronSeries); ++start) {
        for (std::size_t end = start - std::min(start, CastIronReducerEnds); end < start; ++end) {
            rows[count] = RoundReducer(CastIronReducerOneID, CastIronSeries[start], CastIronSeries[end]);
            NameWriter(rows[count++].Name)
                .Add(CastIronSeries[start])
                .Add("_")
                .Add(CastIronSeries[end])
                .Add("RDC");
        }
    }
    for (const DuctReducer& named : DuctReducers) {
        rows[count] = SizedReducer(count == MisnamedDuctReducer ? MisnamedSizes : named);
        NameWriter name(rows[count++].Name);
        name.Add(named.startX).Add("_").Add(named.startY).Add("_");
        name.Add(named.endX).Add("_").Add(named.endY);
    }
    for (std::size_t start = 1; start < std::size(CopperSeries); ++start) {
        rows[count] =
            RoundReducer(CopperReducerOneID, CopperSeries[start].size, CopperSeries[start - 1].size);
        NameWriter(rows[count++].Name).Add(CopperSeries[start].reducerStem).Add("铜异径管");
    }
    if (count != ReducerRows) throw "rows are missing";
    return rows;
}

}  // namespace

constinit const std::array<FittingRow, StraightRows> StraightCatalog = BuildStraightCatalog();
constinit const std::array<ReducerRow, ReducerRows> ReducerCatalog = BuildReducerCatalog();

}  // namespace vorn
