// The script runner by itself, over values that the test keeps.

#include "standin/script/script.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

using standin::Script;
using standin::ScriptAccess;

namespace {

/// Runs one script over values by name.
struct Bench {
    std::map<std::string, double, std::less<>> values{{"in", 0.0}, {"out", 0.0}};
    std::string logged;
    double time = 0.0;
    double stepSeconds = 1.0;
    Script script;

    explicit Bench(const std::string& text) : script(text, Host()) {}

    standin::ScriptHost Host() {
        return {.get =
                    [this](std::string_view name, double& value) {
                        if (name == "over") return ScriptAccess::Ended;
                        if (name == "list") return ScriptAccess::Array;
                        const auto found = values.find(name);
                        if (found == values.end()) return ScriptAccess::Unknown;
                        value = found->second;
                        return ScriptAccess::Done;
                    },
                .set =
                    [this](std::string_view name, double value) {
                        const auto found = values.find(name);
                        if (found == values.end()) return ScriptAccess::Unknown;
                        found->second = value;
                        return ScriptAccess::Done;
                    },
                .log = [this](std::string_view text) { logged.append(text).append(";"); }};
    }
    bool Step() {
        const bool well = script.Step(time, stepSeconds);
        time += stepSeconds;
        return well;
    }
    double Out(double in) {
        values["in"] = in;
        EXPECT_TRUE(Step()) << script.Fault();
        return values["out"];
    }
};

TEST(ScriptTest, RunsWholeOrByItsStepFunctionAndKeepsItsState) {
    Bench whole("n = (n or 0) + 1; set('out', n); log(time() .. ' ' .. step_seconds())");
    EXPECT_EQ(whole.Out(0), 1.0);
    EXPECT_EQ(whole.Out(0), 2.0);
    EXPECT_EQ(whole.logged, "0.0 1.0;1.0 1.0;");
    Bench stepped("local n = 10; log('once'); function step() n = n + get('in'); set('out', n) end");
    EXPECT_EQ(stepped.Out(1), 11.0);
    EXPECT_EQ(stepped.Out(2), 13.0);
    EXPECT_EQ(stepped.logged, "once;");
    Bench truth("set('out', get('in') > 0)");
    EXPECT_EQ(truth.Out(5), 1.0);
    EXPECT_EQ(truth.Out(-5), 0.0);
}

TEST(ScriptTest, AFaultStopsTheScriptAndNamesItsLine) {
    const struct {
        const char *text, *fault;
    } rows[] = {
        {"x = = 1", "script:1: unexpected symbol near '='"},
        {"\x1bLua", "attempt to load a binary chunk (mode is 't')"},
        {"local a\n\na.b = 1", "script:3: attempt to index a nil value (local 'a')"},
        {"\nset('nothing', 1)", "script:2: there is no variable 'nothing'"},
        {"get('list')", "script:1: the variable 'list' is no single number"},
        {"set('out', 'much')", "script:1: bad argument #2 to 'set' (number expected, got string)"},
        {"error({})", "script: a fault without a text"},
        {"\nlocal c = pid{ti = 3}", "script:2: pid: the setting 'kp' is missing"},
        {"pid{kp = 1, k = 2}", "script:1: pid: there is no setting 'k'"},
        {"pid{kp = 'x'}", "script:1: pid: the setting 'kp' must be a number"},
        {"\nlocal r = ramp{rate = 1}\nr(nil)", "script:3: ramp: the target must be a number"},
        {"schedule{{3, 1}, {2, 1}}",
         "script:1: schedule: the hours must rise, from 0 on and below the period"},
    };
    for (const auto& row : rows) {
        Bench bench(row.text);
        EXPECT_FALSE(bench.Step()) << row.text;
        EXPECT_EQ(bench.script.Fault(), row.fault);
        EXPECT_FALSE(bench.Step());
    }
    EXPECT_EQ(standin::ScriptCheck("x = 1"), "OK");
    EXPECT_EQ(standin::ScriptCheck(rows[0].text), rows[0].fault);
}

TEST(ScriptTest, AnEndedRunEndsTheScriptWithoutAFault) {
    Bench bench("pcall(get, 'over') log('on') get('over') log('never')");
    EXPECT_TRUE(bench.Step());
    EXPECT_TRUE(bench.Step());
    EXPECT_EQ(bench.script.Fault() + bench.logged, "on;");
}

TEST(ScriptTest, NothingReachesOut) {
    for (const char* name :
         {"io", "os", "load", "loadstring", "loadfile", "dofile", "debug", "require", "package", "coroutine",
          "collectgarbage", "getmetatable", "setmetatable", "string.dump", "string.rep", "string.find",
          "('').gsub", "table.move", "math.random"}) {
        Bench bench(std::string("assert(") + name + " == nil)");
        EXPECT_TRUE(bench.Step()) << name << ": " << bench.script.Fault();
    }
}

TEST(ScriptTest, EndlessAndGreedyScriptsAreStopped) {
    const struct {
        const char *text, *fault;
    } rows[] = {
        {"\nwhile true do end", "script:2: the step takes more than 1000000 instructions"},
        {"while true do pcall(function() while true do end end) end",
         "script:1: the step takes more than 1000000 instructions"},
        {"local function deep() return 1 + deep() end deep()", "script: not enough memory"},
        {"local t = {} while true do t[#t + 1] = {{}, {}, {}} end", "script: not enough memory"},
        {"local s = 'x' while true do s = s .. s end", "script: not enough memory"},
        {"local s = 'x' for i = 1, 21 do s = s .. s end while true do local t = s .. 'x' end",
         "script: not enough memory"},
        {"local s = 'x' for i = 1, 20 do s = s .. s end\nwhile true do s:reverse() end",
         "script: not enough memory"},
    };
    for (const auto& row : rows) {
        Bench bench(row.text);
        EXPECT_FALSE(bench.Step()) << row.text;
        EXPECT_EQ(bench.script.Fault(), row.fault) << row.text;
    }
}

TEST(ScriptTest, HelpersFollowTheirTables) {
    // A helper, its call, and what it gives for each input, a step of one second each.
    const struct {
        const char *made, *call;
        std::vector<double> in, out;
    } rows[] = {
        {"pid{kp = 0.5}", "h(4, x)", {4, 3, 0, 9}, {0, 0.5, 1, 0}},
        {"pid{kp = 0.5, reverse = true}", "h(4, x)", {4, 5, 0}, {0, 0.5, 0}},
        {"pid{kp = 0.1, ti = 1, high = 10}", "h(2, x)", {0, 0, 3}, {0.4, 0.6, 0.2}},
        // At its limit the integral waits, and leaves it with the first error of the other sign.
        {"pid{kp = 1, ti = 1}", "h(2, x)", {0, 0, 0, 0, 2.5}, {1, 1, 1, 1, 0}},
        {"pid{kp = 1, td = 2, low = -9, high = 9}", "h(0, x)", {0, -1, -1}, {0, 3, 1}},
        {"pid{kp = 1, start = 0.25}", "h(0, x)", {0}, {0.25}},
        {"hysteresis{on = 3, off = 1}", "h(x)", {0, 2, 3, 2, 1, 2}, {0, 0, 1, 1, 0, 0}},
        {"hysteresis{on = 1, off = 3, start = true}", "h(x)", {2, 3, 2, 1}, {1, 0, 0, 1}},
        {"schedule{{1, 5}, {2, 7}, period = 3}", "h()", {0, 0, 0, 0}, {7, 5, 7, 7}},
        {"schedule{{0, 0}, {2, 8}, period = 4, linear = true}", "h()", {0, 0, 0, 0}, {0, 4, 8, 4}},
        {"ramp{rate = 2}", "h(x)", {5, 9, 8, 0}, {5, 7, 8, 6}},
        {"ramp{rate = 2, start = 1}", "h(x)", {5, 5, 5}, {3, 5, 5}},
        {"delay_on{seconds = 2}", "h(x > 0)", {1, 1, 1, 0, 1, 1}, {0, 0, 1, 0, 0, 0}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.made);
        Bench bench(std::string("local h = ") + row.made +
                    " function step() local x = get('in') set('out', " + row.call + ") end");
        // The hours of a schedule pass as the seconds of the others do.
        if (std::string(row.made).starts_with("schedule")) bench.stepSeconds = 3600.0;
        for (std::size_t step = 0; step < row.in.size(); ++step)
            EXPECT_NEAR(bench.Out(row.in[step]), row.out[step], 1e-9) << "step " << step;
    }
}

}  // namespace
