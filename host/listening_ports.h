// On which ports this very process answers: the library tells no port.

#pragma once

#include <vector>

/// The ports from `first` to `last` on which this process listens at 0.0.0.0, also by sockets that it was
/// started with. Its own descriptors tell them; nobody is asked.
std::vector<int> ListeningPorts(int first, int last);
