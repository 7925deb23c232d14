// A control script that runs beside a plant, one call for each step. It knows nothing of projects or of the
// plant: who runs it gives it values by name and takes those that it sets.
//
// The language is Lua 5.4 without what reaches out of the script: no files, no operating system, no loading
// of code, no debugger, no finalizers, no coroutines and no pattern matching. One run takes at most
// `ScriptMemory` bytes, one step at most `ScriptInstructions` instructions and `ScriptStepTime`.

#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct lua_State;

namespace standin {

inline constexpr std::size_t ScriptMemory = std::size_t{16} << 20;  ///< bytes
inline constexpr long ScriptInstructions = 1'000'000;               ///< a step, helpers included
/// The longest that one step may take: only calls of single library functions come near it.
inline constexpr std::chrono::seconds ScriptStepTime{2};
/// Bytes that one step may ask for in all, given back or not.
inline constexpr std::size_t ScriptStepAllocation = std::size_t{256} << 20;

enum class ScriptAccess {
    Done,
    Unknown,   ///< no such variable: a fault of the script
    Array,     ///< the variable is no single number: a fault of the script
    NoMemory,  ///< a fault of the script, too
    Ended      ///< the run is over: the script ends here without a fault
};

/// What a script reaches. An exception of one of these counts as `NoMemory`.
struct ScriptHost {
    std::function<ScriptAccess(std::string_view name, double& value)> get;
    /// `value` is any number, also one that is not finite.
    std::function<ScriptAccess(std::string_view name, double value)> set;
    std::function<void(std::string_view text)> log;
};

/// "OK", or the compiler's message, which begins with `script:LINE:`. Only program text compiles; a compiled
/// program is refused.
std::string ScriptCheck(std::string_view text);

/// One run of a script. Its global variables stay from step to step. It is used by one thread at a time.
class Script {
  public:
    /// Compiles the text. A fault is kept for the first step.
    Script(std::string_view text, ScriptHost host);
    ~Script();
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;

    /// Runs one step: at the first the whole text, then the script's global function `step` where it has one;
    /// at each later one that function, or the whole text again where there is none. `time` is the simulated
    /// time at the step's begin, `stepSeconds` the step's length. False when it failed, now or before: then
    /// nothing runs any more. True, without more steps to come, where an access ended the run.
    bool Step(double time, double stepSeconds);

    /// Why it failed, with the line: `script:3: ...`. Empty while it did not.
    const std::string& Fault() const { return fault_; }

  private:
    struct State;  // what the script's functions and its allocator reach

    std::unique_ptr<State> state_;
    std::unique_ptr<lua_State, void (*)(lua_State*)> lua_;
    std::string fault_;
};

}  // namespace standin
