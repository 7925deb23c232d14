// One command over HTTP.

#pragma once

#include <string>

#include "host/send_options.h"

/// Sends the command of `options` and waits for its reply: to the address given, to the port given, or to the
/// first port of this machine that answers. False, with `fault` saying why, when no reply came. Credentials
/// go over https only; a certificate that does not check out ends the exchange before anything is sent.
bool HttpSend(const SendOptions& options, std::string& reply, std::string& fault);
