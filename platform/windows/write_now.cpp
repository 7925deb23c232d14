#include "platform/write_now.h"

#include <windows.h>

namespace vorn {

std::size_t WriteNow(StandardStream stream, std::string_view text) {
    HANDLE handle = GetStdHandle(stream == StandardStream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    // A pipe then takes what fits, also nothing. A file or a console needs no waiting, and a console shows no
    // character that comes in two pieces.
    DWORD mode = PIPE_NOWAIT;
    const bool pipe = GetFileType(handle) == FILE_TYPE_PIPE;
    if (pipe) SetNamedPipeHandleState(handle, &mode, nullptr, nullptr);
    // A pipe may take a piece whole or not at all.
    const std::size_t pieceBytes = pipe ? 1024 : text.size();
    std::size_t done = 0;
    while (done < text.size()) {
        const std::string_view piece = text.substr(done, pieceBytes);
        DWORD count = 0;
        if (WriteFile(handle, piece.data(), static_cast<DWORD>(piece.size()), &count, nullptr) == 0) {
            return text.size();
        }
        if (count == 0) break;
        done += count;
    }
    return done;
}

}  // namespace vorn
