// The engine's operations on a project's script. A script is compiled to tell its faults, and never run.

#include <cstdlib>
#include <lua.hpp>
#include <memory>
#include <string>

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "standin/trace.h"

using namespace standin;

namespace {

/// Bytes that one compilation may take. A script that needs more is told so.
constexpr std::size_t CompileMemory = std::size_t{64} << 20;

/// The compiler's memory: `budget` is what is left of `CompileMemory`.
void* Allocate(void* budget, void* block, std::size_t oldSize, std::size_t newSize) {
    auto& left = *static_cast<std::size_t*>(budget);
    if (block == nullptr) oldSize = 0;  // the size then tells the kind of the object to come
    if (newSize == 0) {
        std::free(block);
        left += oldSize;
        return nullptr;
    }
    if (newSize > oldSize && newSize - oldSize > left) return nullptr;
    void* moved = std::realloc(block, newSize);
    if (moved != nullptr) left = left + oldSize - newSize;
    return moved;
}

/// "OK", or the compiler's message, which begins with the line. Only the text of a program is taken: a
/// compiled one could break the compiler's own rules.
std::string Analyse(const std::string& script) {
    constexpr const char* NoMemory = "not enough memory";
    std::size_t budget = CompileMemory;
    const std::unique_ptr<lua_State, decltype(&lua_close)> lua(lua_newstate(Allocate, &budget), lua_close);
    if (lua == nullptr) return NoMemory;
    if (luaL_loadbufferx(lua.get(), script.data(), script.size(), "=script", "t") == LUA_OK) return "OK";
    const char* message = lua_tostring(lua.get(), -1);
    return message == nullptr ? NoMemory : message;
}

// Never destroyed: other threads may still ask while the process ends. The engine lock guards it.
std::string& LastAnalysis() {
    static std::string& text = *new std::string;
    return text;
}

}  // namespace

void ProjectLuaPreWrite(const char* name, const char* script) {
    Trace("ProjectLuaPreWrite", name, script);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(name)) project->script = script;
}

void ProjectLuaAnalysis(const char* name) {
    Trace("ProjectLuaAnalysis", name);
    std::string script;
    bool found = false;
    {
        const std::lock_guard guard(EngineLock());
        if (const Project* project = ProjectFind(name)) {
            script = project->script;
            found = true;
        }
    }
    // Without the lock: a long script need not hold the simulation up.
    std::string analysis = found ? Analyse(script) : std::string();
    const std::lock_guard guard(EngineLock());
    LastAnalysis() = std::move(analysis);
}

const char* LuaAnalysisGet() {
    Trace("LuaAnalysisGet");
    static thread_local std::string text;
    const std::lock_guard guard(EngineLock());
    text = LastAnalysis();
    return text.c_str();
}
