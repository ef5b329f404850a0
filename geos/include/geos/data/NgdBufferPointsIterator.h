#pragma once

#include "basic/data/NbdDataPoints.h"
#include "basic/interval/NbiIntervalIntLargeMoving.h"
#include "basic/interval/NbiIntervalIntSmallMoving.h"
#include "geos/data/NgdIBufferIterator.h"

#include <memory>

class NgdABufferManager;
class NgdDataSetPoints;

/// Hands out runs of consecutive sample ranks.
class NgdBufferPointsIterator final : public NgdIBufferIterator
{
public:
  /// Keeps a clone of the data set.
  NgdBufferPointsIterator(const NgdDataSetPoints &dataSet, const NgdABufferManager &manager);
  ~NgdBufferPointsIterator() override;

  void toFront() override;
  bool hasNext() const override;
  NbdDataPoints *next() override;
  void skipNext() override;

private:
  std::unique_ptr<NgdDataSetPoints> _dataSet;
  bool _needCoordinates;
  bool _needSampleNumber;
  NbiIntervalIntSmallMoving _loop;
  NbiIntervalIntLargeMoving _ranks;
};
