#include "standin/script/sandbox.h"

#include <cstdlib>
#include <initializer_list>
#include <string_view>

namespace standin {

namespace {

/// Instructions between two looks at what the step has taken.
constexpr int LookEvery = 100;

/// Bytes of the largest string or table: what bounds the time of one instruction.
constexpr std::size_t LargestBlock = std::size_t{4} << 20;

void* Allocate(void* user, void* block, std::size_t oldSize, std::size_t newSize) {
    auto& use = *static_cast<ScriptUse*>(user);
    if (block == nullptr) oldSize = 0;  // the size is then the kind of the object to come
    if (newSize == 0) {
        std::free(block);
        use.memoryLeft += oldSize;
        return nullptr;
    }
    if (newSize > LargestBlock) return nullptr;
    if (newSize > oldSize) {
        const std::size_t more = newSize - oldSize;
        if (more > use.memoryLeft) return nullptr;
        use.allocated += more;
        if (use.allocated > ScriptStepAllocation) return nullptr;
    }
    void* moved = std::realloc(block, newSize);
    if (moved != nullptr) use.memoryLeft = use.memoryLeft + oldSize - newSize;
    return moved;
}

ScriptUse& UseOf(lua_State* lua) {
    void* use = nullptr;
    lua_getallocf(lua, &use);
    return *static_cast<ScriptUse*>(use);
}

/// Ends a step that has taken too much. A script may catch the fault: from then on each instruction fails.
void Look(lua_State* lua, lua_Debug* /*event*/) {
    ScriptUse& use = UseOf(lua);
    use.instructionsLeft -= LookEvery;
    const bool late = std::chrono::steady_clock::now() > use.end;
    if (!use.exhausted && use.instructionsLeft > 0 && !late) return;
    use.exhausted = true;
    lua_sethook(lua, Look, LUA_MASKCOUNT, 1);
    luaL_where(lua, 0);
    if (late) {
        lua_pushfstring(lua, "the step takes more than %d seconds", static_cast<int>(ScriptStepTime.count()));
    } else {
        lua_pushfstring(lua, "the step takes more than %d instructions",
                        static_cast<int>(ScriptInstructions));
    }
    lua_concat(lua, 2);
    lua_error(lua);
}

/// Removes the named members of the table on top of the stack.
void MembersRemove(lua_State* lua, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        lua_pushnil(lua);
        lua_setfield(lua, -2, name);
    }
}

/// What is opened and given to a new state.
struct Opening {
    const luaL_Reg* functions;
    void* user;
};

/// Opens what a script may use. What is removed reaches out of the script, or can take time without end
/// inside one call of the library, where no bound is looked at: patterns, loops over as many entries as are
/// asked for, and what runs functions out of turn (finalizers and lengths of metatables, fault handlers).
int LibrariesOpen(lua_State* lua) {
    const Opening opening = *static_cast<const Opening*>(lua_touserdata(lua, 1));
    luaL_requiref(lua, LUA_GNAME, luaopen_base, 1);
    MembersRemove(lua, {"collectgarbage", "dofile", "getmetatable", "load", "loadfile", "print",
                        "setmetatable", "warn", "xpcall"});
    lua_pushlightuserdata(lua, opening.user);
    luaL_setfuncs(lua, opening.functions, 1);
    luaL_requiref(lua, LUA_MATHLIBNAME, luaopen_math, 1);
    // Equal runs give equal values: no numbers by chance.
    MembersRemove(lua, {"random", "randomseed"});
    luaL_requiref(lua, LUA_TABLIBNAME, luaopen_table, 1);
    MembersRemove(lua, {"move"});
    luaL_requiref(lua, LUA_STRLIBNAME, luaopen_string, 1);
    MembersRemove(lua, {"dump", "find", "gmatch", "gsub", "match", "pack", "packsize", "rep", "unpack"});
    lua_settop(lua, 0);
    const std::string_view helpers = ScriptHelpers;
    if (luaL_loadbufferx(lua, helpers.data(), helpers.size(), "=helpers", "t") != LUA_OK)
        return lua_error(lua);
    lua_call(lua, 0, 0);
    return 0;
}

}  // namespace

void ScriptUse::BeginStep() {
    allocated = 0;
    instructionsLeft = ScriptInstructions;
    exhausted = false;
    end = std::chrono::steady_clock::now() + ScriptStepTime;
}

lua_State* CompilerMake(ScriptUse& use) {
    return lua_newstate(Allocate, &use);
}

lua_State* SandboxMake(ScriptUse& use, const luaL_Reg* functions, void* user) {
    lua_State* lua = CompilerMake(use);
    if (lua == nullptr) return nullptr;
    Opening opening{functions, user};
    // Both fit the stack of a new state, so that neither asks for memory.
    lua_pushcfunction(lua, LibrariesOpen);
    lua_pushlightuserdata(lua, &opening);
    if (lua_pcall(lua, 1, 0, 0) == LUA_OK) return lua;
    lua_close(lua);
    return nullptr;
}

int SandboxCall(lua_State* lua, ScriptUse& use, int arguments) {
    use.BeginStep();
    lua_sethook(lua, Look, LUA_MASKCOUNT, LookEvery);
    const int status = lua_pcall(lua, arguments, 0, 0);
    lua_sethook(lua, nullptr, 0, 0);
    return status;
}

}  // namespace standin
