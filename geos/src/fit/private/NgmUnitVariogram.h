#pragma once

#include "geos/vmodel/NgmAVStruct.h"

#include <cstddef>
#include <vector>

/// Lag vectors, one array per coordinate.
struct NgmLagVectors
{
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;

  std::size_t size() const { return x.size(); }
  void append(const NbgVector3D &h)
  {
    x.push_back(h.x());
    y.push_back(h.y());
    z.push_back(h.z());
  }
};

/// out[k] = rho(0) - rho(h_k) of a structure.
inline void calcUnitVariogram(const NgmAVStruct &structure, const NgmLagVectors &lags, double *out)
{
  const double origin = 0.;
  const NbgVector3D anisotropy = structure.getAnisotropy();
  NgmAVStruct::Separations separations;
  separations.nSamples = int(lags.size());
  separations.x = lags.x.data();
  separations.y = lags.y.data();
  separations.z = lags.z.data();
  separations.nTargets = 1;
  separations.targetX = separations.targetY = separations.targetZ = &origin;
  separations.rotation = structure.getRotation().getMatrix().getData();
  separations.anisotropy = anisotropy.getData();
  structure.calcCovas(separations, 1., false, out, qint64(lags.size()));
  const double sill = structure.calcCova(NbgVector3D());
  for (std::size_t k = 0; k < lags.size(); ++k)
    out[k] = sill - out[k];
}
