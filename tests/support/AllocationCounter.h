#pragma once

#include <cerrno>
#include <cstddef>

// Counts what a piece of code takes from the C library, whoever asks, by standing in its place. To
// be included by one source of a test program only. The sanitizers bring their own allocator: there
// nothing is counted.

namespace testsupport {

inline thread_local long allocations = 0;

/// Allocations of this thread since it was made.
class AllocationCounter
{
public:
  AllocationCounter() : _before(allocations) {}
  long count() const { return allocations - _before; }

private:
  long _before;
};

}  // namespace testsupport

#if !defined(__SANITIZE_ADDRESS__)

extern "C" {

void *__libc_malloc(std::size_t);
void *__libc_calloc(std::size_t, std::size_t);
void *__libc_realloc(void *, std::size_t);
void *__libc_memalign(std::size_t, std::size_t);

void *malloc(std::size_t size)
{
  ++testsupport::allocations;
  return __libc_malloc(size);
}

void *calloc(std::size_t n, std::size_t size)
{
  ++testsupport::allocations;
  return __libc_calloc(n, size);
}

void *realloc(void *memory, std::size_t size)
{
  ++testsupport::allocations;
  return __libc_realloc(memory, size);
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
  ++testsupport::allocations;
  return __libc_memalign(alignment, size);
}

int posix_memalign(void **memory, std::size_t alignment, std::size_t size)
{
  ++testsupport::allocations;
  *memory = __libc_memalign(alignment, size);
  return *memory ? 0 : ENOMEM;
}

}  // extern "C"

#endif
