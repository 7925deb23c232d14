// VornServer, the service layer of the plant simulation: all that a host program sees. For C and C++.
//
// A host starts `HttpServerThread` and `PipeServerThread`, each on a thread of its own, hands each line of a
// serial link to `ChuanKouServerThread`, and fetches the log of exchanges. There is no stop: everything ends
// with the process. Texts are UTF-8. A text that an entry returns stays the library's and is valid until the
// next call of the same entry.

#ifndef VORN_SERVER_H
#define VORN_SERVER_H

#include <stdbool.h>

// VORN_BUILDING is set where the library itself is built, VORN_LINKED_IN in a program that its objects become
// part of.
#if !defined(_WIN32)
#define VORN_EXPORT __attribute__((visibility("default")))
#elif defined(VORN_BUILDING)
#define VORN_EXPORT __declspec(dllexport)
#elif defined(VORN_LINKED_IN)
#define VORN_EXPORT
#else
#define VORN_EXPORT __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// Serves HTTP on 0.0.0.0, on the first free port of 33360 to 33459, and stays inside. Returns only when no
/// port is free. The argument is not read.
VORN_EXPORT void HttpServerThread(const char* unused);

/// Serves the first free name of the 100 pipes, one client at a time, and stays inside. Returns at once when
/// a server of this directory holds a pipe already. The argument is not read.
VORN_EXPORT void PipeServerThread(const char* unused);

/// Answers one line of a serial link. `line` is NUL-terminated, without its line end; `reply` has room for
/// 192 bytes with the terminator, and a longer reply is cut there, never inside a UTF-8 character. Only lines
/// that begin with "Set/" or "Get/" are served. May be called from any thread; waits while another request
/// runs.
VORN_EXPORT void ChuanKouServerThread(const char* line, char* reply);

/// True once when reads (writes) were logged since the last call. Any thread.
VORN_EXPORT bool RtnGet_SxGet(void);
VORN_EXPORT bool RtnSet_SxGet(void);
/// The log of reads (writes) since the last call: an exchange a line, "header name messages reply". At most
/// 20000 bytes are kept. Each of the two is to be called from one thread at a time.
VORN_EXPORT const char* Rtn_Get_Get(void);
VORN_EXPORT const char* Rtn_Set_Get(void);

/// Analyses the networks of the project in slot 0 to 7: true when they are complete. Takes no lock: not to be
/// called while requests run.
VORN_EXPORT bool Net_Access(int project);
/// The topology of the project in slot 0 to 7 as JSON; null for any other number. As `Net_Access`.
VORN_EXPORT const char* Net_InfoToAI(int project);
#ifdef __cplusplus
}
#endif

#endif
