#include "tests/support/failing_new.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int newsLeft = 0;     // that still succeed
thread_local int newsFailing = 0;  // behind those
thread_local bool failed = false;

}  // namespace

void FailNew(int count, int failing) {
    newsLeft = count;
    newsFailing = count < 0 ? 0 : failing;
    failed = false;
}

bool NewFailed() {
    return failed;
}

void* operator new(std::size_t size) {
    const bool fails = newsFailing > 0 && newsLeft-- <= 0;
    if (fails) --newsFailing;
    void* const block = fails ? nullptr : std::malloc(size == 0 ? 1 : size);
    failed = failed || fails;
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
