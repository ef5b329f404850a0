#pragma once

#include <cstddef>
#include <new>

/// Allocator of memory aligned to a cache line (64 bytes), as the numeric library wants it for
/// results that do not depend on where an array happens to lie.
template <class T>
class NgmAlignedAllocator
{
public:
  using value_type = T;

  static constexpr std::align_val_t ALIGNMENT{64};

  NgmAlignedAllocator() noexcept = default;
  template <class U>
  NgmAlignedAllocator(const NgmAlignedAllocator<U> &) noexcept
  {
  }

  T *allocate(std::size_t n)
  {
    if (n > static_cast<std::size_t>(-1) / sizeof(T))
      throw std::bad_array_new_length();
    return static_cast<T *>(::operator new(n * sizeof(T), ALIGNMENT));
  }
  void deallocate(T *memory, std::size_t) noexcept { ::operator delete(memory, ALIGNMENT); }

  template <class U>
  bool operator==(const NgmAlignedAllocator<U> &) const noexcept
  {
    return true;
  }
  template <class U>
  bool operator!=(const NgmAlignedAllocator<U> &) const noexcept
  {
    return false;
  }
};
