#include "host/service_manager.h"

// The program is no service of Windows: nobody asks.

void TellReady(std::string_view /*status*/) {}

void TellStopping() {}
