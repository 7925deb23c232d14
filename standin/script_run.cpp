#include "standin/script_run.h"

#include <algorithm>

#include "platform/notice.h"
#include "platform/visible.h"
#include "standin/held_values.h"
#include "standin/run_time.h"
#include "standin/values.h"
#include "text/fixed_text.h"
#include "text/number_text.h"

namespace standin {

namespace {

/// Lines that a script may log in a run, and bytes of each.
constexpr int LogLines = 1000;
constexpr std::size_t LogBytes = 400;

bool Same(const DecodedName& one, const DecodedName& other) {
    return one.scope == other.scope && one.element == other.element && one.port == other.port &&
           one.variable == other.variable && one.type == other.type;
}

bool IsNumber(const DecodedName& decoded) {
    return decoded.type == static_cast<int>(VariableKind::Real) ||
           decoded.type == static_cast<int>(VariableKind::Integer);
}

double ValueRead(Project& project, const DecodedName& decoded) {
    const bool real = decoded.type == static_cast<int>(VariableKind::Real);
    if (decoded.scope == 0) {
        const ProjectVariable& variable = project.variables[static_cast<std::size_t>(decoded.variable)];
        return real ? variable.reals[0] : variable.integers[0];
    }
    Element* element = ElementFind(project, decoded.scope, decoded.element);
    if (element == nullptr) return 0.0;
    if (!real) return HeldFind(*element, decoded.variable) != nullptr ? 1.0 : 0.0;
    const double* value = RunReal(*element, decoded.port, decoded.variable);
    return value == nullptr ? 0.0 : *value;
}

void ElementWrite(Project& project, const DecodedName& decoded, double value) {
    Element* element = ElementFind(project, decoded.scope, decoded.element);
    if (element == nullptr) return;
    if (decoded.type == static_cast<int>(VariableKind::Integer)) {
        ValueHold(project, *element, decoded.variable, value != 0.0);
        return;
    }
    HeldValue* const held = HeldFind(*element, decoded.port, decoded.variable);
    double* const real = RunReal(*element, decoded.port, decoded.variable);
    if (held != nullptr) {
        held->own = value;
    } else if (real != nullptr) {
        *real = value;
    }
}

void ValueWrite(Project& project, const DecodedName& decoded, double value) {
    if (decoded.scope != 0) {
        ElementWrite(project, decoded, value);
    } else if (decoded.type == static_cast<int>(VariableKind::Real)) {
        VariableStore(project, decoded.variable, value);
    } else {
        project.variables[static_cast<std::size_t>(decoded.variable)].integers[0] = vorn::IntFromReal(value);
    }
}

void StateWrite(Project& project, ScriptState state) {
    project.variables[ScriptRow].integers[0] = static_cast<int>(state);
}

}  // namespace

ScriptRun::ScriptRun(const Project& project)
    : slot_(SlotOf(project)), run_(project.run), revision_(project.scriptRevision), text_(project.script) {}

bool ScriptRun::Serves(const Project& project) const {
    return project.run == run_ && project.scriptRevision == revision_;
}

Project* ScriptRun::Find() const {
    Project* project = ProjectFind(slot_);
    return project != nullptr && Serves(*project) ? project : nullptr;
}

const DecodedName* ScriptRun::Decode(Project& project, std::string_view name) {
    if (structure_ != project.structure) names_.clear();
    structure_ = project.structure;
    const auto known = names_.find(name);
    if (known != names_.end()) return &known->second;
    // As clients use it, behind the project's name.
    const std::string beginning = std::string(project.name) + '_';
    const bool whole = vorn::EqualWithoutCase(name.substr(0, beginning.size()), beginning);
    thread_local DecodedName decoded;
    if (!VariableDecode(project, name, decoded) &&
        !(whole && VariableDecode(project, name.substr(beginning.size()), decoded))) {
        return nullptr;
    }
    // Clients add and delete variables of the project without a change of the structure.
    return decoded.scope == 0 ? &decoded : &names_.emplace(name, decoded).first->second;
}

ScriptAccess ScriptRun::Get(std::string_view name, double& value) {
    const std::lock_guard guard(EngineLock());
    Project* project = Find();
    if (project == nullptr) return ScriptAccess::Ended;
    const DecodedName* decoded = Decode(*project, name);
    if (decoded == nullptr) return ScriptAccess::Unknown;
    if (!IsNumber(*decoded)) return ScriptAccess::Array;
    const auto set = std::find_if(sets_.begin(), sets_.end(),
                                  [&](const auto& each) { return Same(each.first, *decoded); });
    value = set == sets_.end() ? ValueRead(*project, *decoded) : set->second;
    return ScriptAccess::Done;
}

ScriptAccess ScriptRun::Set(std::string_view name, double value) {
    const std::lock_guard guard(EngineLock());
    Project* project = Find();
    if (project == nullptr) return ScriptAccess::Ended;
    const DecodedName* decoded = Decode(*project, name);
    if (decoded == nullptr) return ScriptAccess::Unknown;
    if (!IsNumber(*decoded)) return ScriptAccess::Array;
    const auto set = std::find_if(sets_.begin(), sets_.end(),
                                  [&](const auto& each) { return Same(each.first, *decoded); });
    if (set == sets_.end()) {
        sets_.emplace_back(*decoded, Kept(value));
    } else {
        set->second = Kept(value);
    }
    return ScriptAccess::Done;
}

void ScriptRun::Log(std::string_view text) {
    if (++lines_ > LogLines) return;
    std::string line;
    {
        const std::lock_guard guard(EngineLock());
        const Project* project = Find();
        if (project == nullptr) return;
        line = std::string("script: ") + project->name + ": ";
    }
    vorn::Notice(vorn::NoticeKind::Information, line + vorn::Visible(vorn::TextCut(text, LogBytes)));
    if (lines_ == LogLines)
        vorn::Notice(vorn::NoticeKind::Information, line + "its further lines are not shown");
}

void ScriptRun::Report(const std::string& fault) {
    std::string line;
    {
        const std::lock_guard guard(EngineLock());
        Project* project = Find();
        if (project == nullptr) return;
        project->scriptFault = vorn::Visible(vorn::TextCut(fault, LogBytes));
        StateWrite(*project, ScriptState::Failed);
        line = std::string("script: ") + project->name + ": stopped: " + project->scriptFault;
    }
    vorn::Notice(vorn::NoticeKind::Fault, line);
}

void ScriptRun::Step(double seconds) {
    double time = 0.0;
    int steps = 0;
    {
        const std::lock_guard guard(EngineLock());
        Project* project = Find();
        if (project == nullptr || stepped_ == project->steps) return;
        time = project->time;
        steps = project->steps;
    }
    const bool first = script_ == nullptr;
    if (first) {
        script_ = std::make_unique<Script>(
            text_,
            ScriptHost{.get = [this](std::string_view name, double& value) { return Get(name, value); },
                       .set = [this](std::string_view name, double value) { return Set(name, value); },
                       .log = [this](std::string_view text) { Log(text); }});
    }
    if (!first && !script_->Fault().empty()) return;
    stepped_ = steps;
    sets_.clear();
    // What a script has set before its fault does not count: its step is not made.
    if (script_->Step(time, seconds)) return;
    sets_.clear();
    Report(script_->Fault());
}

void ScriptRun::Apply(Project& project) {
    if (!Serves(project)) return;
    if (script_ != nullptr && script_->Fault().empty()) StateWrite(project, ScriptState::Runs);
    for (const auto& [decoded, value] : sets_) ValueWrite(project, decoded, value);
    sets_.clear();
}

void ScriptStep(int slot, double seconds, std::unique_ptr<ScriptRun>& kept) {
    {
        const std::lock_guard guard(EngineLock());
        Project* project = ProjectFind(slot);
        if (project == nullptr || (kept != nullptr && kept->Serves(*project))) {
            // The one that is there goes on.
        } else if (project->script.empty()) {
            kept.reset();
            StateWrite(*project, ScriptState::None);
        } else {
            kept = std::make_unique<ScriptRun>(*project);
        }
    }
    if (kept != nullptr) kept->Step(seconds);
}

}  // namespace standin
