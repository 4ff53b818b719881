#include "RealTimeGuard.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cstddef>

using tendel::test::RealTimeGuard;

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
const bool RealTimeGuard::isAbleToCount = false;
#else
const bool RealTimeGuard::isAbleToCount = true;

namespace {

void countAllocation() {
    RealTimeGuard::allocated += RealTimeGuard::guards > 0;
}

}  // namespace

// The C library's own, under the names by which it offers them to replacements.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) noexcept {
    countAllocation();
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
    countAllocation();
    return __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) noexcept {
    countAllocation();
    return __libc_realloc(block, size);
}
void free(void* block) noexcept {
    countAllocation();
    __libc_free(block);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static const auto real =
        reinterpret_cast<int (*)(pthread_mutex_t*)>(::dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    RealTimeGuard::locked += RealTimeGuard::guards > 0;
    return real(mutex);
}
}
#endif
