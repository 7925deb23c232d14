#include <vorn_server.h>

#include <chrono>
#include <iostream>
#include <thread>

int main() {
    // Each entry stays inside, so each gets a thread of its own.
    std::thread([] { HttpServerThread(nullptr); }).detach();
    std::thread([] { PipeServerThread(nullptr); }).detach();
    // Fetch the log of exchanges: reads on one side, writes on the other.
    for (;;) {
        if (RtnGet_SxGet()) std::cout << "read:  " << Rtn_Get_Get() << std::endl;
        if (RtnSet_SxGet()) std::cout << "write: " << Rtn_Set_Get() << std::endl;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}
