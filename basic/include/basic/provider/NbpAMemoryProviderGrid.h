#pragma once

#include "basic/geom/NbgGeomGrid.h"
#include "basic/provider/NbpAMemoryProviderBase.h"

/// Regular grid in memory. `Parent` reads or writes ranges of a grid interface. The coordinates
/// are served from the geometry: their structural ids can be read like double variables.
template <class Parent>
class NbpAMemoryProviderGrid : public Parent
{
public:
  const NbgGeomGrid &getGridGeometry() const override { return _geometry; }
  NbgEDimension getDimension() const override;

  bool updateBoundingBox(NbgBox &box) const override;

  bool readCoordinates(const NbiIntervalIntLarge &ranks, NbdVariableDouble *x, NbdVariableDouble *y,
                       NbdVariableDouble *z, int first) const override;
  bool readGrid(const QString &id, const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                const NbiIntervalIntSmall &k, NbdAVariable &values) const override;
  bool readGridCoordinates(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                           const NbiIntervalIntSmall &k, NbdVariableDouble *x, NbdVariableDouble *y,
                           NbdVariableDouble *z) const override;
  bool readGridSelection(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                         const NbiIntervalIntSmall &k,
                         NbdVariableSelection &selection) const override;

protected:
  explicit NbpAMemoryProviderGrid(const NbgGeomGrid &geometry);

private:
  NbgGeomGrid _geometry;
};
