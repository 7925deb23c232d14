// The Lua state that a script runs in: what of the language's library it has, and the bounds on what it
// takes.

#pragma once

#include <chrono>
#include <cstddef>
#include <lua.hpp>

#include "standin/script/script.h"

namespace standin {

/// What a script has taken. The allocator's and the hook's functions get it by pointer, so it stays where it
/// is while its state lives.
struct ScriptUse {
    std::size_t memoryLeft = ScriptMemory;
    std::size_t allocated = 0;                    ///< in this step, given back or not
    long instructionsLeft = 0;                    ///< of this step
    bool exhausted = false;                       ///< this step has taken what it may: nothing runs any more
    std::chrono::steady_clock::time_point end{};  ///< of this step

    void BeginStep();
};

/// A new state with the language's harmless functions, those given (a list that ends with nulls; each has
/// `user` as its upvalue) and the helpers; null where there is no memory. `use` must outlive it.
lua_State* SandboxMake(ScriptUse& use, const luaL_Reg* functions, void* user);

/// A new state that can only compile; null where there is no memory.
lua_State* CompilerMake(ScriptUse& use);

/// Calls the function below the arguments on top of the stack, without results, within the bounds of a step.
/// The status is Lua's; unless it is `LUA_OK` the message is on top of the stack.
int SandboxCall(lua_State* lua, ScriptUse& use, int arguments);

/// The helpers as the text of a script: `pid`, `hysteresis`, `schedule`, `ramp`, `delay_on`.
extern const char* const ScriptHelpers;

}  // namespace standin
