#pragma once

#include "geos/stats/NgcAPairwiseStat.h"
#include "geos/stats/NgmVarioMap.h"

/// The variogram map of the variables of an input role, from all pairs of samples. No weights.
///
/// Roles:    the variables; MASK, optional: 1 leaves the sample out
/// Pairs:    those where all four values are defined; a pair and its reverse fall into one cell
class NgcVarioMap : public NgcAPairwiseStat
{
public:
  /// `ranges` are the semi-axes of the ellipsoid of the map along the axes of `orientation`.
  NgcVarioMap(int nrho, int ntheta, int nphi, const NbgVector3D &ranges,
              const NbgRotation &orientation, int nvar, const QString &roleV);
  ~NgcVarioMap() override;

  int getNrho() const { return _map.getNrho(); }
  int getNtheta() const { return _map.getNtheta(); }
  int getNphi() const { return _map.getNphi(); }
  const NbgVector3D &getRanges() const { return _map.getMaxAxes(); }
  const NbgRotation &getOrientation() const { return _map.getRot(); }
  int getNvar() const { return _map.getNvar(); }

  /// The map: empty before a run, normalized after it.
  const NgmVarioMap &getGvm() const { return _map; }

protected:
  void _addRuntimeConstraints() override;
  void _preProcessing() override;
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;
  void _postProcessing() override;

private:
  NgmVarioMap _map;
};
