#include "transport/http_workers.h"

#include <exception>
#include <new>
#include <utility>

#include "platform/memory.h"
#include "platform/sleep.h"

namespace vorn {

namespace {

constexpr int RestMilliseconds = 10;

}  // namespace

HttpWorkers::HttpWorkers() {
    while (threads_.size() < CPPHTTPLIB_THREAD_POOL_COUNT && (Start() || threads_.empty())) continue;
}

void HttpWorkers::Enqueue(std::function<void()> work) {
    for (bool queued = false; !queued;) queued = Push(work);
    came_.notify_one();
}

void HttpWorkers::shutdown() {
    {
        const std::lock_guard guard(lock_);
        ends_ = true;
    }
    came_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

bool HttpWorkers::Start() {
    try {
        threads_.reserve(CPPHTTPLIB_THREAD_POOL_COUNT);
        threads_.emplace_back([this] { Work(); });
        return true;
    } catch (const std::exception&) {
        SleepMilliseconds(RestMilliseconds);
        return false;
    }
}

bool HttpWorkers::Push(const std::function<void()>& work) {
    try {
        const std::lock_guard guard(lock_);
        waiting_.push_back(work);
        return true;
    } catch (const std::bad_alloc&) {
        SleepMilliseconds(RestMilliseconds);
        return false;
    }
}

void HttpWorkers::Work() {
    MemoryThreadReady();
    for (;;) {
        std::unique_lock guard(lock_);
        came_.wait(guard, [this] { return ends_ || !waiting_.empty(); });
        if (waiting_.empty()) return;
        const std::function<void()> work = std::move(waiting_.front());
        waiting_.pop_front();
        guard.unlock();
        work();
    }
}

}  // namespace vorn
