// The verbs of `Put`: the second way to drive a project, by its name alone.

#pragma once

#include <string>

namespace vorn {

/// Carries out `verb` on the project `name`, which goes to the engine as it is, and gives the reply. The
/// verbs are Run, Pause, Step, Stop, Remove, and Close, which closes all projects and reads no name. The
/// dispatcher's lock is held; no verb waits.
std::string PutVerb(const std::string& name, const std::string& verb);

}  // namespace vorn
