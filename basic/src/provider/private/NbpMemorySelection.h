#pragma once

#include "provider/private/NbpRuns.h"

#include <vector>

/// Which samples of a file are selected: one byte per sample, with the counts of whole blocks, so
/// that counting a range touches two blocks at most.
class NbpMemorySelection
{
public:
  NbpMemorySelection() = default;

  /// Takes flags that are 0 or 1.
  explicit NbpMemorySelection(std::vector<unsigned char> flags);

  qint64 getSize() const { return qint64(_flags.size()); }
  const unsigned char *getFlags() const { return _flags.data(); }

  /// Selected samples among first ... last.
  qint64 count(qint64 first, qint64 last) const;

  /// Appends the runs of selected samples among first ... last. With `compact` their positions
  /// follow each other from `position` on; else rank `first` stands at `position` and the gaps
  /// between runs remain. Returns the position behind the last sample.
  int appendRuns(qint64 first, qint64 last, bool compact, int position, NbpRuns &runs) const;

  void fill(qint64 first, qint64 last, bool selected);

  /// Gives n selected samples from `rank` on in place of nOld.
  void replace(qint64 rank, qint64 nOld, qint64 n);
  void reserve(qint64 size);

private:
  static constexpr qint64 BLOCK = 4096;

  qint64 _getNBlocks() const;
  void _countBlocks(qint64 firstBlock, qint64 lastBlock);
  qint64 _countBefore(qint64 rank) const;

  std::vector<unsigned char> _flags;
  std::vector<qint64> _selectedBefore;  ///< selected samples before each block
};
