// The stored form of a project: its whole content as one JSON text.

#pragma once

#include <string>

#include "standin/project.h"

namespace standin {

/// Appends the content of `project` as JSON. All numbers come back exactly; NaN and the infinities are
/// written as `NaN`, `Infinity` and `-Infinity`, and NaN comes back without its sign. The engine lock is
/// held.
void ProjectToJson(const Project& project, std::string& text);

/// Fills a project that is empty but for its name and capacities. False when `text` is not such a text, or
/// does not fit the catalogue and the tables; `project` then holds anything.
bool ProjectFromJson(const std::string& text, Project& project);

}  // namespace standin
