// Showing the log of exchanges to a person.

#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

/// Lines out of one side of the log, as it is fetched piece by piece.
class ExchangeLines {
  public:
    /// `mark` goes before each line.
    explicit ExchangeLines(std::string_view mark) : mark_(mark) {}

    /// The lines of a fetched text, each with its end. A fetch may fall between the two halves of an
    /// exchange: a last line that is a first half is held back and put before what is fetched next. What the
    /// console asks for itself and marks so is left out.
    std::string Take(std::string_view log);

  private:
    std::string_view mark_;
    std::string half_;
};

/// Both sides of the log. To be used by one thread.
class ExchangePrinter {
  public:
    /// `show` is given the lines of each fetch.
    explicit ExchangePrinter(std::function<void(const std::string&)> show) : show_(std::move(show)) {}

    /// Shows what was logged since the last call, if there is news.
    void Poll();

  private:
    std::function<void(const std::string&)> show_;
    ExchangeLines reads_{"read   "};
    ExchangeLines writes_{"write  "};
};
