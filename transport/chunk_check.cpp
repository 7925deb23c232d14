#include "transport/chunk_check.h"

#include <algorithm>

namespace vorn {

namespace {

constexpr int DigitsAtMost = 15;
constexpr int LineBytesAtMost = 4096;

/// The value of a hexadecimal digit, -1 for no such digit.
int Digit(char byte) {
    if (byte >= '0' && byte <= '9') return byte - '0';
    if (byte >= 'a' && byte <= 'f') return byte - 'a' + 10;
    if (byte >= 'A' && byte <= 'F') return byte - 'A' + 10;
    return -1;
}

}  // namespace

ChunkCheck::State ChunkCheck::NextOfSize(char byte) {
    const int digit = Digit(byte);
    if (digit >= 0 && lineBytes_ <= DigitsAtMost) {
        left_ = left_ * 16 + static_cast<std::uint64_t>(digit);
        return State::Size;
    }
    if (lineBytes_ <= 1) return State::Faulty;  // no digit before it
    if (byte == '\r') return State::SizeEnd;
    return byte == ';' ? State::Extension : State::Faulty;
}

ChunkCheck::State ChunkCheck::Next(char byte) {
    const auto expect = [byte](char expected, State next) { return byte == expected ? next : State::Faulty; };
    switch (state_) {
        case State::Size:
            ++lineBytes_;
            return NextOfSize(byte);
        case State::Extension:
            if (byte == '\r') return State::SizeEnd;
            return byte >= ' ' && ++lineBytes_ <= LineBytesAtMost ? State::Extension : State::Faulty;
        case State::SizeEnd:
            lineBytes_ = 0;
            return expect('\n', left_ > 0 ? State::Data : State::LastReturn);
        case State::DataReturn:
            return expect('\r', State::DataEnd);
        case State::DataEnd:
            return expect('\n', State::Size);
        case State::LastReturn:
            return expect('\r', State::LastEnd);
        case State::LastEnd:
            return expect('\n', State::Done);
        default:
            return state_;
    }
}

std::size_t ChunkCheck::Take(const char* bytes, std::size_t size) {
    std::size_t taken = 0;
    while (taken < size && state_ != State::Done) {
        if (state_ == State::Data) {
            const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(left_, size - taken));
            left_ -= part;
            taken += part;
            if (left_ == 0) state_ = State::DataReturn;
            continue;
        }
        state_ = Next(bytes[taken]);
        if (state_ == State::Faulty) break;
        ++taken;
    }
    return taken;
}

}  // namespace vorn
