#pragma once

#include <atomic>
#include <utility>
#include <vector>

/// A vector that is copied when it is written: copies share their values until one of them changes.
/// Distinct copies may be used from several threads.
template <class T>
class NbdSharedArray
{
public:
  NbdSharedArray() = default;
  NbdSharedArray(const NbdSharedArray &other) noexcept : _block(other._block)
  {
    if (_block)
      _block->references.fetch_add(1, std::memory_order_relaxed);
  }
  NbdSharedArray(NbdSharedArray &&other) noexcept : _block(std::exchange(other._block, nullptr)) {}
  explicit NbdSharedArray(std::vector<T> values) : _block(new Block(std::move(values))) {}
  ~NbdSharedArray() { _release(); }

  NbdSharedArray &operator=(NbdSharedArray other) noexcept
  {
    std::swap(_block, other._block);
    return *this;
  }

  const std::vector<T> &getConst() const
  {
    static const std::vector<T> empty;
    return _block ? _block->values : empty;
  }

  /// The values for writing; they are no longer shared.
  std::vector<T> &get()
  {
    if (!_block)
      _block = new Block({});
    else if (_block->references.load(std::memory_order_acquire) != 1)
      *this = NbdSharedArray(_block->values);
    return _block->values;
  }

  bool isSharedWith(const NbdSharedArray &other) const { return _block && _block == other._block; }

private:
  struct Block
  {
    explicit Block(std::vector<T> given) : values(std::move(given)) {}
    std::atomic<int> references{1};
    std::vector<T> values;
  };

  void _release()
  {
    if (_block && _block->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
      delete _block;
  }

  Block *_block = nullptr;
};
