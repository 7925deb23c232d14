// Counters of the host program for a monitoring system, in the text form that Prometheus reads: of the
// records of events, and of the process itself.

#pragma once

#include <string>

#include "service/exchange_events.h"

/// Each counts one record, or what found no room. Any thread.
void Count(const vorn::ExchangeEvent& event);
void Count(const vorn::RunStateEvent& event);
void Count(const vorn::NoticeEvent& event);
void Count(const vorn::EventLoss& loss);

/// All counters. Words are those of `WordText` and "other" alone.
std::string CountersText();
