#pragma once

#include "basic/geom/NbgEDimension.h"
#include "basic/provider/NbpAMemoryProviderW.h"

/// Scattered samples in memory: coordinates are variables, one column per axis.
template <class Interface>
class NbpAMemoryProviderPoints : public NbpAMemoryProviderW<Interface>
{
public:
  /// Add the coordinates of an axis, one value per sample. readCoordinates() gives 0 for an axis
  /// beyond the dimension all the same.
  QString addXVariable(std::vector<double> values, const QString &name = QStringLiteral("X"));
  QString addYVariable(std::vector<double> values, const QString &name = QStringLiteral("Y"));
  QString addZVariable(std::vector<double> values, const QString &name = QStringLiteral("Z"));

  NbgEDimension getDimension() const override { return _dimension; }
  bool updateBoundingBox(NbgBox &box) const override;
  bool readCoordinates(const NbiIntervalIntLarge &ranks, NbdVariableDouble *x, NbdVariableDouble *y,
                       NbdVariableDouble *z, int first) const override;

protected:
  NbpAMemoryProviderPoints(const NbgEDimension &dimension, qint64 nSamples);

private:
  NbgEDimension _dimension;
};
