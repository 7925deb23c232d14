#include "include/vorn_server.h"
int main() {
    HttpServerThread(nullptr);
    return 0;
}
