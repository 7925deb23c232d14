// The script of a project's run: what it reads and sets are the project's values.

#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "standin/control.h"
#include "standin/project.h"
#include "standin/script/script.h"

namespace standin {

/// One run of a project's script. What it sets is kept until the step that it was set for begins, so that a
/// stopped or paused run changes no value. One thread at a time uses it; the engine lock is not held unless
/// that is said.
class ScriptRun {
  public:
    /// Of the script as it is now, for the project's present run. The lock is held.
    explicit ScriptRun(const Project& project);

    /// Whether it is the one for the project's run and script. The lock is held.
    bool Serves(const Project& project) const;

    /// Runs the script for the project's next step, unless it has run for that. A fault stops it: it is
    /// written to the project and printed.
    void Step(double seconds);

    /// Puts what the script has set into the project's values. The lock is held.
    void Apply(Project& project);

  private:
    /// The project as long as its run and its script are those of this object, else null. The lock is held.
    Project* Find() const;
    /// Decodes a name of an element or of the project. The lock is held.
    const DecodedName* Decode(Project& project, std::string_view name);
    ScriptAccess Get(std::string_view name, double& value);
    ScriptAccess Set(std::string_view name, double value);
    void Log(std::string_view text);
    void Report(const std::string& fault);

    int slot_;
    std::uint64_t run_;
    std::uint64_t revision_;
    std::string text_;
    std::unique_ptr<Script> script_;  ///< made at the first step
    int stepped_ = -1;                ///< the steps that the project had made when it ran last
    int lines_ = 0;                   ///< that the script has logged
    std::uint64_t structure_ = 0;     ///< the project's, which `names_` are of
    std::unordered_map<std::string, DecodedName, TextHash, std::equal_to<>> names_;  ///< of elements
    std::vector<std::pair<DecodedName, double>> sets_;  ///< not applied yet, in the order of the first sets
};

/// Runs the project's script, if it has one, before a step of that many seconds. `kept` is what the project
/// keeps of it from step to step. Takes the lock by itself.
void ScriptStep(int slot, double seconds, std::unique_ptr<ScriptRun>& kept);

}  // namespace standin
