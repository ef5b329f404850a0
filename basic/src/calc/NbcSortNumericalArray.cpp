#include "basic/calc/NbcSortNumericalArray.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeAssertion.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace {

template <class T>
struct Keyed
{
  T value;
  int rank;
};

template <class T>
double toDouble(T value)
{
  if constexpr (std::is_floating_point_v<T>)
    return double(value);
  else
    return NbbGlobal::isDefined(value) ? double(value) : NbbGlobal::D_FFFF;
}

/// Rank as second key makes an unstable sort give the stable order.
template <class T, class Before>
void sortStable(std::vector<Keyed<T>> &items, Before before)
{
  std::sort(items.begin(), items.end(), [before](const Keyed<T> &a, const Keyed<T> &b) {
    if (before(a.value, b.value))
      return true;
    return !before(b.value, a.value) && a.rank < b.rank;
  });
}

template <class T>
bool isLessNanLast(T a, T b)
{
  if constexpr (std::is_floating_point_v<T>) {
    if (std::isnan(a) || std::isnan(b))
      return !std::isnan(a);
  }
  return a < b;
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
  std::vector<Keyed<T>> defined, undefined;
  defined.reserve(size_t(std::max(0, n)));
  for (int i = 0; i < n; ++i)
    (NbbGlobal::isDefined(values[i]) ? defined : undefined).push_back({values[i], i});

  if (mode == DECREASING_STABLE) {
    sortStable(defined, [](T a, T b) { return a > b; });
  } else {
    sortStable(defined, [](T a, T b) { return a < b; });
    sortStable(undefined, isLessNanLast<T>);
  }

  _ranks.reserve(n);
  _elements.reserve(n);
  for (const std::vector<Keyed<T>> *items : {&defined, &undefined}) {
    for (const Keyed<T> &item : *items) {
      _ranks.append(item.rank);
      _elements.append(toDouble(item.value));
    }
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
