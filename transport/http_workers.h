// The threads that serve the connections of an HTTP server.

#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

#include "transport/httplib_compat.h"

namespace vorn {

/// The library's pool of workers, which it would end the process for where there is no memory: a connection
/// waits until there is, and a worker that could not be started is done without. As many as the library's.
class HttpWorkers : public LibraryQueue {
  public:
    HttpWorkers();
    void shutdown() override;

  private:
    void Enqueue(std::function<void()> work) override;
    bool Start();
    bool Push(const std::function<void()>& work);
    void Work();

    std::mutex lock_;  ///< guards what follows but the threads
    std::condition_variable came_;
    std::list<std::function<void()>> waiting_;
    bool ends_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace vorn
