// The utility classes: allocation that never throws, and the thread ID.
#include "ZoUtils.h"

#include <cstdlib>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/syscall.h>
#include <unistd.h>
#endif

void* ZoObject::operator new(std::size_t size) noexcept { return std::malloc(size ? size : 1); }
void ZoObject::operator delete(void* p) noexcept { std::free(p); }
void* ZoObject::operator new[](std::size_t size) noexcept { return std::malloc(size ? size : 1); }
void ZoObject::operator delete[](void* p) noexcept { std::free(p); }

std::uint32_t ZoThread::GetCurrentThreadID()
{
#if defined(_WIN32)
    return static_cast<std::uint32_t>(::GetCurrentThreadId());
#else
    // The kernel's thread ID: unique among the live threads of the system.
    return static_cast<std::uint32_t>(::syscall(SYS_gettid));
#endif
}
