// Showing the log of exchanges to a person.

#pragma once

#include <string>
#include <string_view>

/// `text` with everything that a terminal would act on or cannot show (control characters, bytes that are no
/// UTF-8) written as `\x1B`.
std::string Visible(std::string_view text);

/// Lines out of one side of the log, as it is fetched piece by piece.
class ExchangeLines {
  public:
    /// `mark` goes before each line.
    explicit ExchangeLines(std::string_view mark) : mark_(mark) {}

    /// The lines of a fetched text, each with its end. A fetch may fall between the two halves of an
    /// exchange: a last line that is a first half is held back and put before what is fetched next.
    std::string Take(std::string_view log);

  private:
    std::string_view mark_;
    std::string half_;
};

/// Both sides of the log. To be used by one thread.
class ExchangePrinter {
  public:
    /// Prints what was logged since the last call, if there is news.
    void Poll();

  private:
    ExchangeLines reads_{"read   "};
    ExchangeLines writes_{"write  "};
};
