// The picture of a project: its modules, nodes and links, page by page.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "standin/plant_layout.h"
#include "standin/project.h"

namespace standin {

/// What there is to draw of a project, by ascending page number and not yet arranged. The lock is held.
std::vector<PlantPage> PlantPages(const Project& project);

/// The arranged pages as an SVG text, under the project's name.
std::string PlantSvg(std::string_view name, const std::vector<PlantPage>& pages);

}  // namespace standin
