// Records of events as lines for a person.

#pragma once

#include <string>

#include "service/exchange_events.h"

/// The line of an exchange, with its end:
///
///     write  http/127.0.0.1 Set PLANT1_GTemp '21.5' 'OK'
///
/// side, way in and peer, word, name, messages and reply. Messages and reply stand in quotes, and so does a
/// name of other than letters, digits and `_.-`; a quote inside is written as `\x27`. `+N` behind a text
/// stands for N further bytes. In the place of a word that is none stands `other` and what came in quotes.
std::string ExchangeLine(const vorn::ExchangeEvent& event);

/// The line of a change of a run state, with its end: `state  PLANT1 running`.
std::string RunStateLine(const vorn::RunStateEvent& event);

/// Lines for what was lost; empty where that is nothing.
std::string LossLines(const vorn::EventLoss& loss);
