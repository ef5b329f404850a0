#pragma once

#include "basic/geom/NbgIntVector3D.h"
#include "basic/interval/NbiIntervalIntSmallMoving.h"

/// The parcels of a grid: blocks of nodes that cover it, the last ones along an axis being smaller.
class NgcInterpolParcels
{
public:
  NgcInterpolParcels(const NbgIntVector3D &nodes, const NbgIntVector3D &sizes);

  /// Number of parcels; a double, for it may exceed any integer.
  static double count(const NbgIntVector3D &nodes, const NbgIntVector3D &sizes);

  /// Moves to the next parcel, those along I first, then J, then K; false behind the last one.
  bool next();

  /// Moves to the parcel that holds a node.
  void select(const NbgIntVector3D &node);

  /// First node and number of nodes of the current parcel.
  NbgIntVector3D getFirst() const;
  NbgIntVector3D getCounts() const;

private:
  NbiIntervalIntSmallMoving _windows[3];
  bool _started = false;
};
