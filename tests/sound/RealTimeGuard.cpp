#include "RealTimeGuard.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cstddef>

namespace {

// Plain values: these hooks run before and after everything else.
thread_local int guards = 0;
thread_local int allocated = 0;
thread_local int locked = 0;

}  // namespace

namespace tendel::test {

RealTimeGuard::RealTimeGuard() {
    ++guards;
}
RealTimeGuard::~RealTimeGuard() {
    --guards;
}
int RealTimeGuard::allocations() {
    return allocated;
}
int RealTimeGuard::locks() {
    return locked;
}

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
bool RealTimeGuard::isAbleToCount() {
    return false;
}
#else
bool RealTimeGuard::isAbleToCount() {
    return true;
}
#endif

}  // namespace tendel::test

#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)

// The C library's own, under the names by which it offers them to replacements.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) noexcept {
    allocated += guards > 0;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
    allocated += guards > 0;
    return __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) noexcept {
    allocated += guards > 0;
    return __libc_realloc(block, size);
}
void free(void* block) noexcept {
    allocated += guards > 0;
    __libc_free(block);
}

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    using Lock = int (*)(pthread_mutex_t*);
    static Lock real = nullptr;
    if (!real) real = reinterpret_cast<Lock>(::dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    locked += guards > 0;
    return real(mutex);
}
}

#endif
