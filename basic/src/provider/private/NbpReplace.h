#pragma once

#include <QtGlobal>

#include <algorithm>
#include <vector>

/// Puts n times `value` in place of nOld values from `rank` on.
template <class T>
void replaceValues(std::vector<T> &values, qint64 rank, qint64 nOld, qint64 n, const T &value)
{
  const auto first = values.begin() + rank;
  const qint64 nKept = std::min(nOld, n);
  std::fill(first, first + nKept, value);
  if (n < nOld)
    values.erase(first + n, first + nOld);
  else
    values.insert(first + nKept, std::size_t(n - nKept), value);
}

/// Reserves at least `size` values; growing by small steps reallocates rarely.
template <class T>
void reserveAmortized(std::vector<T> &values, qint64 size)
{
  const std::size_t needed = std::size_t(size);
  if (needed > values.capacity())
    values.reserve(std::max(needed, values.capacity() + values.capacity() / 2));
}
