#pragma once

#include "basic/data/NbdDataGridExtended.h"

/// A block of grid nodes with a border, thinned: along each axis only the nodes whose index in the
/// whole grid is a multiple of the step, so that the buffers of a grid share one lattice.
class NbdDataGridSampled : public NbdDataGridExtended
{
public:
  NbdDataGridSampled();
  ~NbdDataGridSampled() override;

  NbdDataGridSampled *makeCopy() const override;

  /// Steps of at least 1 along the axes. Resizes the table's variables.
  void setStep(const NbgIntVector3D &step) { _setStep(step); }
  const NbgIntVector3D &getStep() const { return _getStep(); }

  /// Geometry of the buffer's nodes.
  NbgGeomGrid getSampledGeometry() const { return getExtendedGeometry(); }
};
