/* A program in C that takes both headers and all nine entries; entries.cpp makes it one in C++. */

#include <vorn_contract.h>
#include <vorn_server.h>

#include <string.h>

/* The entries that stay inside are only named. */
static void (*const servers[])(const char*) = {HttpServerThread, PipeServerThread};

/* A library that nobody has asked anything has no news, and its plant has no fault. */
int main(void) {
    char reply[VORN_SERIAL_REPLY_BYTES];
    if (RtnGet_SxGet() || RtnSet_SxGet()) return 1;
    if (strcmp(Rtn_Get_Get(), "") != 0 || strcmp(Rtn_Set_Get(), "") != 0) return 2;
    if (!Net_Access(0) || Net_InfoToAI(0) == NULL || Net_InfoToAI(8) != NULL) return 3;
    ChuanKouServerThread("Put/X", reply);
    return strcmp(reply, "the header is none") != 0 || servers[0] == servers[1] ? 4 : 0;
}
