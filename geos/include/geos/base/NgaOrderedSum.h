#pragma once

#include <QtGlobal>

#include <map>
#include <memory>
#include <utility>

class NgaIAdditive;

/// Adds up the partial sums of the buffers of a run so that the result does not depend on the order
/// in which workers hand them in.
///
/// Partials of ranks 2k and 2k + 1 are added as soon as both are there, then those sums in pairs,
/// and so on: the tree of additions is fixed by the ranks alone. However far one worker lags
/// behind, about workers * log2(buffers) sums wait. Not locked.
class NgaOrderedSum
{
public:
  NgaOrderedSum();
  ~NgaOrderedSum();
  NgaOrderedSum(const NgaOrderedSum &) = delete;
  NgaOrderedSum &operator=(const NgaOrderedSum &) = delete;

  /// Forgets everything.
  void clear();

  /// Takes the partial of buffer `rank` (from 0, each once).
  void add(qint64 rank, std::unique_ptr<NgaIAdditive> partial);

  /// Adds what was taken to `total`, in the order of ranks, and forgets it. Ranks may be missing.
  void flushInto(NgaIAdditive &total);

  int getNPending() const { return int(_pending.size()); }

private:
  // Key: first rank covered; then the level (the node covers 2^level ranks).
  std::map<std::pair<qint64, int>, std::unique_ptr<NgaIAdditive>> _pending;
};
