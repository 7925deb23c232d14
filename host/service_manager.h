// Telling the system's manager of services, where one started this program, how it is doing.

#pragma once

#include <string_view>

/// The service answers; `status` is one line for people. Does nothing where no manager asked for it.
void TellReady(std::string_view status);

/// The program is about to end, because it was asked to.
void TellStopping();
