#include "basic/calc/NbcSortNumericalArray.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeAssertion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <type_traits>
#include <vector>

namespace {

/// Values are sorted by a key whose unsigned order is the wanted one.
struct Item
{
  quint64 key;
  int rank;
};

constexpr quint64 SIGN_BIT = quint64(1) << 63;
constexpr quint64 LAST_KEY = ~quint64(0);

/// Bits of IEEE 754 numbers order like integers once those of negative numbers are inverted.
/// Infinities and other undefined numbers keep their order behind the defined ones, except
/// -infinity and NaN, which come last.
quint64 keyOf(double value)
{
  if (std::isnan(value))
    return LAST_KEY;
  if (std::isinf(value) && value < 0.)
    return LAST_KEY - 1;
  const double withoutNegativeZero = value + 0.;
  quint64 bits;
  std::memcpy(&bits, &withoutNegativeZero, sizeof(bits));
  return bits & SIGN_BIT ? ~bits : bits | SIGN_BIT;
}

quint64 keyOf(qint64 value)
{
  return NbbGlobal::isDefined(value) ? quint64(value) ^ SIGN_BIT : LAST_KEY;
}

quint64 keyOf(int value)
{
  return NbbGlobal::isDefined(value) ? keyOf(qint64(value)) : LAST_KEY;
}

template <class T>
double toDouble(T value)
{
  if constexpr (std::is_floating_point_v<T>)
    return double(value);
  else
    return NbbGlobal::isDefined(value) ? double(value) : NbbGlobal::D_FFFF;
}

constexpr int RADIX_BITS = 8;
constexpr int N_PASSES = 8;
constexpr size_t N_BUCKETS = size_t(1) << RADIX_BITS;

/// Below this number of values the radix sort does not repay its counters (measured).
constexpr size_t RADIX_MINIMUM = 1500;

size_t bucketOf(quint64 key, int pass)
{
  return size_t(key >> (pass * RADIX_BITS)) & (N_BUCKETS - 1);
}

/// Stable sort by key, from the least significant bits up; passes in which all keys agree are left
/// out.
void radixSort(std::vector<Item> &items)
{
  std::vector<std::array<size_t, N_BUCKETS>> counts(N_PASSES);
  for (auto &ofPass : counts)
    ofPass.fill(0);
  for (const Item &item : items) {
    for (int pass = 0; pass < N_PASSES; ++pass)
      ++counts[size_t(pass)][bucketOf(item.key, pass)];
  }

  std::vector<Item> sorted(items.size());
  for (int pass = 0; pass < N_PASSES; ++pass) {
    std::array<size_t, N_BUCKETS> &positions = counts[size_t(pass)];
    if (positions[bucketOf(items.front().key, pass)] == items.size())
      continue;
    size_t position = 0;
    for (size_t &count : positions) {
      const size_t next = position + count;
      count = position;
      position = next;
    }
    for (const Item &item : items)
      sorted[positions[bucketOf(item.key, pass)]++] = item;
    items.swap(sorted);
  }
}

void sortStable(std::vector<Item> &items)
{
  if (items.size() >= RADIX_MINIMUM) {
    radixSort(items);
    return;
  }
  // The rank as second key makes any sort stable.
  std::sort(items.begin(), items.end(), [](const Item &a, const Item &b) {
    return a.key != b.key ? a.key < b.key : a.rank < b.rank;
  });
}

}  // namespace

NbcSortNumericalArray::NbcSortNumericalArray(const double *values, int n, Mode mode)
{
  _sort(values, n, mode);
}

NbcSortNumericalArray::NbcSortNumericalArray(const float *values, int n, Mode mode)
{
  _sort(values, n, mode);
}

NbcSortNumericalArray::NbcSortNumericalArray(const int *values, int n, Mode mode)
{
  _sort(values, n, mode);
}

NbcSortNumericalArray::NbcSortNumericalArray(const qint64 *values, int n, Mode mode)
{
  _sort(values, n, mode);
}

template <class T>
void NbcSortNumericalArray::_sort(const T *values, int n, Mode mode)
{
  std::vector<Item> items(size_t(std::max(0, n)));
  for (int i = 0; i < n; ++i) {
    quint64 key = keyOf(values[i]);
    if (mode == DECREASING_STABLE)
      key = NbbGlobal::isDefined(values[i]) ? ~key : LAST_KEY;
    items[size_t(i)] = {key, i};
  }
  sortStable(items);

  _ranks.reserve(n);
  _elements.reserve(n);
  for (const Item &item : items) {
    _ranks.append(item.rank);
    _elements.append(toDouble(values[item.rank]));
  }
}

int NbcSortNumericalArray::getRank(int k) const
{
  if (k < 0 || k >= _ranks.size())
    NBE_FAIL(QStringLiteral("Position %1 is outside the array of %2 elements.")
                 .arg(k)
                 .arg(_ranks.size()));
  return _ranks[k];
}

double NbcSortNumericalArray::getElement(int k) const
{
  getRank(k);
  return _elements[k];
}
