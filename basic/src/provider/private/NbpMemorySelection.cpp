#include "provider/private/NbpMemorySelection.h"

#include "provider/private/NbpReplace.h"

#include <algorithm>
#include <cstring>

namespace {

/// Number of flags that are 1. Sums of at most 255 bytes fit in a byte and vectorise.
qint64 countFlags(const unsigned char *flags, qint64 n)
{
  qint64 count = 0;
  while (n > 0) {
    const int length = int(std::min<qint64>(n, 255));
    unsigned char sum = 0;
    for (int i = 0; i < length; ++i)
      sum = static_cast<unsigned char>(sum + flags[i]);
    count += sum;
    flags += length;
    n -= length;
  }
  return count;
}

/// The first place in first ... end - 1 whose flag is `flag`, or end.
const unsigned char *findFlag(const unsigned char *first, const unsigned char *end, int flag)
{
  const void *found = std::memchr(first, flag, std::size_t(end - first));
  return found ? static_cast<const unsigned char *>(found) : end;
}

}  // namespace

NbpMemorySelection::NbpMemorySelection(std::vector<unsigned char> flags) : _flags(std::move(flags))
{
  _countBlocks(0, _getNBlocks() - 1);
}

qint64 NbpMemorySelection::count(qint64 first, qint64 last) const
{
  return last < first ? 0 : _countBefore(last + 1) - _countBefore(first);
}

int NbpMemorySelection::appendRuns(qint64 first, qint64 last, bool compact, int position,
                                   NbpRuns &runs) const
{
  const unsigned char *const begin = _flags.data() + first;
  const unsigned char *const end = _flags.data() + last + 1;
  const unsigned char *cursor = begin;
  while ((cursor = findFlag(cursor, end, 1)) != end) {
    const unsigned char *const behind = findFlag(cursor, end, 0);
    const int length = int(behind - cursor);
    appendRun(runs, first + (cursor - begin), compact ? position : position + int(cursor - begin),
              length);
    if (compact)
      position += length;
    cursor = behind;
  }
  return compact ? position : position + int(end - begin);
}

void NbpMemorySelection::fill(qint64 first, qint64 last, bool selected)
{
  const qint64 nAdded = (selected ? last - first + 1 : 0) - count(first, last);
  std::fill(_flags.begin() + first, _flags.begin() + last + 1, selected ? 1 : 0);
  const qint64 lastBlock = last / BLOCK;
  _countBlocks(first / BLOCK, lastBlock);
  for (std::size_t block = lastBlock + 2; block < _selectedBefore.size(); ++block)
    _selectedBefore[block] += nAdded;
}

void NbpMemorySelection::replace(qint64 rank, qint64 nOld, qint64 n)
{
  replaceValues(_flags, rank, nOld, n, static_cast<unsigned char>(1));
  _countBlocks(rank / BLOCK, _getNBlocks() - 1);
}

void NbpMemorySelection::reserve(qint64 size)
{
  reserveAmortized(_flags, size);
  _selectedBefore.reserve(std::size_t(size / BLOCK + 2));
}

qint64 NbpMemorySelection::_getNBlocks() const
{
  return (getSize() + BLOCK - 1) / BLOCK;
}

void NbpMemorySelection::_countBlocks(qint64 firstBlock, qint64 lastBlock)
{
  _selectedBefore.resize(std::size_t(_getNBlocks() + 1), 0);
  for (qint64 block = firstBlock; block <= lastBlock; ++block) {
    const qint64 first = block * BLOCK;
    const qint64 n = std::min(BLOCK, getSize() - first);
    _selectedBefore[block + 1] = _selectedBefore[block] + countFlags(_flags.data() + first, n);
  }
}

qint64 NbpMemorySelection::_countBefore(qint64 rank) const
{
  const qint64 block = rank / BLOCK;
  return _selectedBefore[block] + countFlags(_flags.data() + block * BLOCK, rank - block * BLOCK);
}
