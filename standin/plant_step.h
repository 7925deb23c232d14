// One step of a project's plant: reads the project's values, computes without the engine's lock, and writes
// what came out in one go.

#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "standin/plant/plant.h"
#include "standin/project.h"
#include "standin/script_run.h"

namespace standin {

/// Simulated seconds of a step, where nobody says otherwise.
inline constexpr double StepSeconds = 0.1;

/// What a project keeps for its steps. It goes with the project; a step that is under way ends with its own
/// copy.
struct PlantKept {
    std::mutex stepping;          ///< held through a step
    std::uint64_t structure = 0;  ///< the project's, which `plant` was made from
    std::uint64_t run = 0;        ///< the project's, which `plant` was made for
    PlantRows rows;               ///< that `plant` was made from
    std::unique_ptr<Plant> plant;
    std::unique_ptr<ScriptRun> script;
};

/// Why a step is made: the project runs, or a client asked for it, whatever the flags.
enum class StepCause { Run, Request };

/// Runs the project's script, then steps the project of a slot on by that many seconds, and takes the lock by
/// itself. False, with nothing written, where no project is open or it changed while the step was computed:
/// its structure, its run, or the slot's project; a step of a run also where the project runs no longer. Only
/// values that a plant gives are written; of those that it also reads (the temperature of a room, of a
/// vessel) one that a client wrote meanwhile stays as the client wrote it.
bool PlantStep(int slot, double seconds, StepCause cause = StepCause::Request);

}  // namespace standin
