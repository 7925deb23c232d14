#include <vorn_server.h>

#include <cstring>

/// A library that nobody has asked anything has no news.
int main() {
    return RtnGet_SxGet() || std::strcmp(Rtn_Get_Get(), "") != 0 ? 1 : 0;
}
