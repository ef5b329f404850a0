#pragma once

#include "basic/data/NbdDataGrid.h"
#include "geos/data/NgdABufferGridIterator.h"

#include <memory>

class NgdDataSetGrid;

/// Hands out blocks of grid nodes.
class NgdBufferGridIterator final : public NgdABufferGridIterator
{
public:
  /// Keeps a clone of the data set.
  NgdBufferGridIterator(const NgdDataSetGrid &dataSet, const NgdBufferManagerGrid &manager,
                        const NbgIntVector3D &target, const NbgIntVector3D &origin);
  ~NgdBufferGridIterator() override;

  NbdDataGrid *next() override;

private:
  std::unique_ptr<NgdDataSetGrid> _dataSet;
  bool _needCoordinates;
  bool _needSampleNumber;
  bool _isCompressed;
};
