#include "standin/script/script.h"

#include <exception>
#include <utility>

#include "standin/script/sandbox.h"

namespace standin {

struct Script::State {
    ScriptUse use;
    ScriptHost host;
    double time = 0.0;
    double stepSeconds = 0.0;
    bool begun = false;  ///< the text ran once, or began to
    bool ended = false;  ///< an access ended the run

    /// Runs one step; its arguments are the state and the compiled text.
    static int Run(lua_State* lua);
    static State& Of(lua_State* lua) {
        return *static_cast<State*>(lua_touserdata(lua, lua_upvalueindex(1)));
    }
    static int Get(lua_State* lua);
    static int Set(lua_State* lua);
    static int Log(lua_State* lua);
    static int Time(lua_State* lua);
    static int StepSeconds(lua_State* lua);
};

namespace {

constexpr const char* NoMemory = "not enough memory";

/// Calls what a script reaches, and lets no exception out into Lua's own frames.
template <typename Function>
ScriptAccess Guarded(Function function) {
    try {
        return function();
    } catch (const std::exception&) {
        return ScriptAccess::NoMemory;
    }
}

std::string_view NameArgument(lua_State* lua) {
    std::size_t bytes = 0;
    const char* name = luaL_checklstring(lua, 1, &bytes);
    return {name, bytes};
}

/// Leaves the script where an access did not come about. What it was called with is on the stack.
int Refuse(lua_State* lua, ScriptAccess access) {
    const char* name = lua_tostring(lua, 1);
    if (access == ScriptAccess::Unknown) return luaL_error(lua, "there is no variable '%s'", name);
    if (access == ScriptAccess::Array) return luaL_error(lua, "the variable '%s' is no single number", name);
    return luaL_error(lua, access == ScriptAccess::NoMemory ? "not enough memory" : "the run is over");
}

/// The message on top of the stack, which is left empty.
std::string MessageTake(lua_State* lua) {
    const char* message = lua_type(lua, -1) == LUA_TSTRING ? lua_tostring(lua, -1) : nullptr;
    std::string text = message == nullptr ? "script: a fault without a text" : message;
    lua_settop(lua, 0);
    return text;
}

int Compile(lua_State* lua, std::string_view text) {
    return luaL_loadbufferx(lua, text.data(), text.size(), "=script", "t");
}

}  // namespace

int Script::State::Run(lua_State* lua) {
    State& state = *static_cast<State*>(lua_touserdata(lua, 1));
    const bool first = !std::exchange(state.begun, true);
    if (first) {
        lua_pushvalue(lua, 2);
        lua_call(lua, 0, 0);
    }
    if (lua_getglobal(lua, "step") == LUA_TFUNCTION) {
        lua_call(lua, 0, 0);
    } else if (!first) {
        lua_pushvalue(lua, 2);
        lua_call(lua, 0, 0);
    }
    return 0;
}

int Script::State::Get(lua_State* lua) {
    State& state = Of(lua);
    const std::string_view name = NameArgument(lua);
    double value = 0.0;
    const ScriptAccess access = Guarded([&] { return state.host.get(name, value); });
    state.ended = state.ended || access == ScriptAccess::Ended;
    if (access != ScriptAccess::Done) return Refuse(lua, access);
    lua_pushnumber(lua, value);
    return 1;
}

int Script::State::Set(lua_State* lua) {
    State& state = Of(lua);
    const std::string_view name = NameArgument(lua);
    const double value = lua_isboolean(lua, 2) ? lua_toboolean(lua, 2) : luaL_checknumber(lua, 2);
    const ScriptAccess access = Guarded([&] { return state.host.set(name, value); });
    state.ended = state.ended || access == ScriptAccess::Ended;
    return access == ScriptAccess::Done ? 0 : Refuse(lua, access);
}

int Script::State::Log(lua_State* lua) {
    std::size_t bytes = 0;
    const char* text = luaL_tolstring(lua, 1, &bytes);
    Guarded([&] {
        Of(lua).host.log({text, bytes});
        return ScriptAccess::Done;
    });
    return 0;
}

int Script::State::Time(lua_State* lua) {
    lua_pushnumber(lua, Of(lua).time);
    return 1;
}

int Script::State::StepSeconds(lua_State* lua) {
    lua_pushnumber(lua, Of(lua).stepSeconds);
    return 1;
}

std::string ScriptCheck(std::string_view text) {
    ScriptUse use;
    const std::unique_ptr<lua_State, decltype(&lua_close)> lua(CompilerMake(use), lua_close);
    if (lua == nullptr) return NoMemory;
    return Compile(lua.get(), text) == LUA_OK ? "OK" : MessageTake(lua.get());
}

Script::Script(std::string_view text, ScriptHost host)
    : state_(std::make_unique<State>()), lua_(nullptr, lua_close) {
    static constexpr luaL_Reg Functions[] = {{"get", State::Get},
                                             {"set", State::Set},
                                             {"log", State::Log},
                                             {"time", State::Time},
                                             {"step_seconds", State::StepSeconds},
                                             {nullptr, nullptr}};
    state_->host = std::move(host);
    lua_.reset(SandboxMake(state_->use, Functions, state_.get()));
    if (lua_ == nullptr) {
        fault_ = NoMemory;
    } else if (Compile(lua_.get(), text) != LUA_OK) {
        fault_ = MessageTake(lua_.get());
    }
}

Script::~Script() = default;

bool Script::Step(double time, double stepSeconds) {
    if (!fault_.empty()) return false;
    if (state_->ended) return true;
    lua_State* const lua = lua_.get();
    state_->time = time;
    state_->stepSeconds = stepSeconds;
    // The compiled text stays at the bottom of the stack. None of these pushes asks for memory.
    lua_pushcfunction(lua, State::Run);
    lua_pushlightuserdata(lua, state_.get());
    lua_pushvalue(lua, 1);
    if (SandboxCall(lua, state_->use, 2) == LUA_OK || state_->ended) return true;
    fault_ = MessageTake(lua);
    // Lua has no line for this one.
    if (fault_ == NoMemory) fault_.insert(0, "script: ");
    return false;
}

}  // namespace standin
