#pragma once

#include "basic/data/NbdValueConversion.h"

#include <QDataStream>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <vector>

/// What the variables do with a column of values, whatever owns it.
namespace NbdColumnOperations {

template <class T>
int countDefined(const std::vector<T> &values)
{
  int count = 0;
  for (const T &value : values)
    count += NbdValueTraits<T>::isDefined(value);
  return count;
}

template <class T>
void compress(std::vector<T> &values, const unsigned char *keep)
{
  std::size_t kept = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (keep[i]) {
      if (kept != i)
        values[kept] = std::move(values[i]);
      ++kept;
    }
  }
  values.resize(kept);
}

template <class T>
std::vector<T> extracted(const std::vector<T> &values, const int *positions, int n)
{
  std::vector<T> result;
  result.reserve(n);
  for (int k = 0; k < n; ++k)
    result.push_back(values[positions[k]]);
  return result;
}

/// Positions in the order of the values, stable, undefined values last.
template <class T>
std::vector<int> sortedPositions(const std::vector<T> &values, bool ascending)
{
  std::vector<int> positions(values.size());
  std::iota(positions.begin(), positions.end(), 0);
  const T *array = values.data();
  const auto isDefined = [array](int i) { return NbdValueTraits<T>::isDefined(array[i]); };
  const auto end = std::stable_partition(positions.begin(), positions.end(), isDefined);
  if (ascending)
    std::stable_sort(positions.begin(), end, [array](int i, int j) { return array[i] < array[j]; });
  else
    std::stable_sort(positions.begin(), end, [array](int i, int j) { return array[j] < array[i]; });
  return positions;
}

/// Bytes that a value takes at least in a stream.
template <class T>
constexpr int bytesInStream()
{
  return std::is_same_v<T, QString> ? 4 : int(sizeof(T));
}

/// Unsigned integer of the size of what is written of a T: whole values, components of points.
template <class T>
using StreamWord =
    std::conditional_t<std::is_same_v<T, NbgVector3D> || sizeof(T) == 8, quint64,
                       std::conditional_t<sizeof(T) == 4, quint32,
                                          std::conditional_t<sizeof(T) == 2, quint16, quint8>>>;

/// Writes the values, without their number, big-endian.
template <class T>
void write(QDataStream &stream, const std::vector<T> &values)
{
  if constexpr (std::is_same_v<T, QString>) {
    for (const QString &value : values)
      stream << value;
  } else {
    using Word = StreamWord<T>;
    std::array<Word, 4096> block;
    const char *bytes = reinterpret_cast<const char *>(values.data());
    std::size_t left = values.size() * (sizeof(T) / sizeof(Word));
    while (left > 0 && stream.status() == QDataStream::Ok) {
      const std::size_t n = std::min(left, block.size());
      qToBigEndian<Word>(bytes, qsizetype(n), block.data());
      const int size = int(n * sizeof(Word));
      if (stream.writeRawData(reinterpret_cast<const char *>(block.data()), size) != size)
        stream.setStatus(QDataStream::WriteFailed);
      bytes += size;
      left -= n;
    }
  }
}

/// Reads n values; stops when the stream's status is no longer Ok. Memory is taken as values come,
/// for streams whose length is not known.
template <class T>
std::vector<T> read(QDataStream &stream, int n)
{
  std::vector<T> values;
  if constexpr (std::is_same_v<T, QString>) {
    for (int i = 0; i < n && stream.status() == QDataStream::Ok; ++i) {
      values.emplace_back();
      stream >> values.back();
    }
  } else {
    using Word = StreamWord<T>;
    constexpr std::size_t BLOCK = 1 << 16;
    while (values.size() < std::size_t(n) && stream.status() == QDataStream::Ok) {
      const std::size_t first = values.size();
      const std::size_t count = std::min(std::size_t(n) - first, BLOCK);
      values.resize(first + count);
      const int size = int(count * sizeof(T));
      char *bytes = reinterpret_cast<char *>(values.data() + first);
      if (stream.readRawData(bytes, size) != size)
        stream.setStatus(QDataStream::ReadPastEnd);
      qFromBigEndian<Word>(bytes, qsizetype(std::size_t(size) / sizeof(Word)), bytes);
    }
  }
  return values;
}

}  // namespace NbdColumnOperations
