#pragma once

#include "basic/geom/NbgIntVector3D.h"
#include "basic/interval/NbiIntervalIntSmallMoving.h"
#include "geos/data/NgdIBufferIterator.h"

class NgdBufferManagerGrid;

/// Walks the blocks of nodes of a grid in the order of its manager, for each loop index.
class NgdABufferGridIterator : public NgdIBufferIterator
{
public:
  void toFront() override;
  bool hasNext() const override;
  void skipNext() override;

protected:
  NgdABufferGridIterator(const NgdBufferManagerGrid &manager, const NbgIntVector3D &target,
                         const NbgIntVector3D &origin);

  /// Moves to the next block; the current one is empty before the first call.
  void _advance();

  /// The current block in indices of the whole grid.
  NbiIntervalIntSmall _getI() const;
  NbiIntervalIntSmall _getJ() const;
  NbiIntervalIntSmall _getK() const;

  int _getLoopRank() const { return _loop.getInterval().getLower(); }

private:
  bool _hasNextCut() const;
  void _restartCuts();

  NbgIntVector3D _origin;
  NbiIntervalIntSmallMoving _loop;
  NbiIntervalIntSmallMoving _i;
  NbiIntervalIntSmallMoving _j;
  NbiIntervalIntSmallMoving _k;
};
