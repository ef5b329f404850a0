#pragma once

#include "private/NgmLanes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

/// A squared distance so much larger that no rounding of coordinates can hide a sample behind it.
class NgdWidening
{
public:
  /// `coordinateError`: how far rounding may move a coordinate.
  explicit NgdWidening(double coordinateError)
      : _absolute(2. * coordinateError * coordinateError / relative)
  {
  }

  // (d + e)^2 <= d^2 (1 + r) + e^2 (1 + 1 / r) for every r.
  double operator()(double squaredDistance) const
  {
    return squaredDistance * (1. + relative) + _absolute;
  }

private:
  static constexpr double relative = 1e-9;
  double _absolute;
};

/// Collects the nearest of the points that a walk through a tree offers, and all that may tie with
/// the last one.
///
/// A point is one number: its squared distance, whose 32 lowest bits give way to its position. So
/// a sorted array of them is kept by minima and maxima of whole registers, without a branch for
/// each element, at the price of distances to 2^-20: points that stand less apart are not told
/// apart, and are kept.
class NgdNearestSet
{
public:
  /// `usable`: by number of the point, null for all; `order`: numbers by position. `memory` is
  /// scratch and grows.
  NgdNearestSet(int wanted, double bound, const unsigned char *usable, const unsigned *order,
                const NgdWidening &widening, std::vector<double> &memory)
      : _wanted(wanted),
        _bound(bound),
        _usable(usable),
        _order(order),
        _widening(widening),
        _memory(memory)
  {
    _reserve(wanted + NgmLanes::LANES);
    std::fill(_keys, _keys + _capacity, std::numeric_limits<double>::infinity());
    _keys[-1] = -1.;
  }

  double bound() const { return _bound; }
  int count() const { return _count; }

  /// Nearest first, but for points whose distances are not told apart.
  unsigned position(int i) const
  {
    std::uint64_t bits;
    std::memcpy(&bits, _keys + i, sizeof bits);
    return unsigned(bits);
  }

  void offer(double squaredDistance, unsigned position)
  {
    // The bound may have shrunk since the caller asked for it.
    if (squaredDistance > _bound || (_usable && !_usable[_order[position]]))
      return;
    if (_count == _capacity)
      _grow();
    _insert(_toKey(squaredDistance, position));
    if (_count < _wanted)
      return;
    _bound = std::min(_bound, _widening(_keys[_wanted - 1] * (1. + spread)) + smallest);
    while (_count > _wanted && _keys[_count - 1] * (1. - spread) - smallest > _bound)
      _keys[--_count] = std::numeric_limits<double>::infinity();
  }

private:
  /// How far a key may be from its distance: so much of it, or as much as the smallest number.
  static constexpr double spread = 0x1p-19;
  static constexpr double smallest = std::numeric_limits<double>::min();

  static double _toKey(double squaredDistance, unsigned position)
  {
    std::uint64_t bits;
    std::memcpy(&bits, &squaredDistance, sizeof bits);
    bits = (bits & ~std::uint64_t(0xffffffff)) | position;
    double key;
    std::memcpy(&key, &bits, sizeof key);
    return key;
  }

  /// Every element becomes the larger one of its lower neighbor and of the smaller one of itself
  /// and the key.
  void _insert(double key)
  {
    using namespace NgmLanes;
    const Lanes inserted = {key, key, key, key};
    for (int i = _count++ / LANES * LANES; i >= 0; i -= LANES) {
      const Lanes here = at(_keys + i).lanes;
      const Lanes before = at(_keys + i - 1).lanes;
      const Lanes smaller = here < inserted ? here : inserted;
      at(_keys + i).lanes = smaller > before ? smaller : before;
    }
  }

  /// Room for whole registers, and one register before them.
  void _reserve(int count)
  {
    _capacity = NgmLanes::padded(count);
    const std::size_t needed = std::size_t(_capacity + NgmLanes::LANES);
    if (_memory.size() < needed)
      _memory.resize(needed);
    _keys = _memory.data() + NgmLanes::LANES;
  }

  void _grow()
  {
    const int before = _capacity;
    _reserve(2 * _capacity);
    std::fill(_keys + before, _keys + _capacity, std::numeric_limits<double>::infinity());
  }

  int _wanted;
  int _count = 0;
  int _capacity = 0;
  double _bound;
  const unsigned char *_usable;
  const unsigned *_order;
  const NgdWidening &_widening;
  std::vector<double> &_memory;
  double *_keys = nullptr;
};
