// A JSON text under construction, with the sum of its bytes, which is taken as they come.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace standin {

/// FNV-1a of 64 bits: it finds each single changed byte.
class ByteSum {
  public:
    void Add(std::string_view bytes) {
        for (const char byte : bytes) sum_ = (sum_ ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    }
    std::uint64_t Value() const { return sum_; }

  private:
    std::uint64_t sum_ = 14695981039346656037U;
};

class SummedText {
  public:
    /// Continues `text`, whose bytes so far are not in the sum.
    explicit SummedText(std::string& text) : text_(text) {}

    /// Each appends a piece: one as it is, numbers in decimal, and a text in quotes. A real comes back
    /// exactly when it is read; it is written as `NaN`, `Infinity` or `-Infinity` where it is no finite
    /// number.
    void Raw(std::string_view piece) {
        text_.append(piece);
        sum_.Add(piece);
    }
    void Integer(std::int64_t value);
    void Real(double value);
    void Quoted(std::string_view value);

    std::uint64_t Sum() const { return sum_.Value(); }

  private:
    std::string& text_;
    ByteSum sum_;
};

}  // namespace standin
