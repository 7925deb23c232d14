// Finding out on which port this very process answers: the library tells no port.

#pragma once

#include <functional>
#include <string>

/// Asks the ports in rising order until one is found that this process serves, again and again while
/// `waiting` gives true; 0 when it no longer does. Other servers may stand on lower ports: a port is this
/// process's own when a request sent there turns up in this process's log of reads. What else that log holds
/// goes to `reads`. Called from the thread that fetches the log.
int OwnPortFind(const std::function<bool()>& waiting, const std::function<void(const std::string&)>& reads);
