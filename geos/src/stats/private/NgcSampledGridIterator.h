#pragma once

#include "basic/data/NbdDataGridSampled.h"
#include "geos/data/NgdABufferGridIterator.h"

#include <memory>

class NgdDataSetGrid;

/// Hands out blocks of a grid thinned by steps.
class NgcSampledGridIterator : public NgdABufferGridIterator
{
public:
  /// Keeps a clone of the data set.
  NgcSampledGridIterator(const NgdDataSetGrid &dataSet, const NgdBufferManagerGrid &manager,
                         const NbgIntVector3D &step);
  ~NgcSampledGridIterator() override;

  NbdDataGridSampled *next() override;

private:
  std::unique_ptr<NgdDataSetGrid> _dataSet;
  NbgIntVector3D _step;
};
