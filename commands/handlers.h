// The handlers that the command table names, a family of commands a paragraph.

#pragma once

#include <string>

#include "commands/request.h"

namespace vorn {

std::string Create(const Request& request);
std::string Open(const Request& request);

std::string AddModule(const Request& request);
std::string AddNode(const Request& request);
std::string AddLink(const Request& request);

}  // namespace vorn
