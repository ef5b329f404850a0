#include "geos/stats/NgcVarioMap.h"

#include "stats/private/NgwVarioMap.h"

#include <QObject>

NgcVarioMap::NgcVarioMap(int nrho, int ntheta, int nphi, const NbgVector3D &ranges,
                         const NbgRotation &orientation, int nvar, const QString &roleV)
    : NgcAPairwiseStat(roleV, true), _map(nrho, ntheta, nphi, ranges, orientation, nvar)
{
  setProgressMessage(QObject::tr("Variogram Map computation"));
  _addRuleCount(Nbd::Dataset::INPUT, roleV, nvar, nvar);
}

NgcVarioMap::~NgcVarioMap()
{
  _finish();
}

void NgcVarioMap::_addRuntimeConstraints()
{
  NgcAPairwiseStat::_addRuntimeConstraints();
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::MASK, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0, 1);
}

void NgcVarioMap::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Computing Variogram Map..."));
  _map = NgmVarioMap(getNrho(), getNtheta(), getNphi(), getRanges(), getOrientation(), getNvar());
  _setAccumulator(std::make_unique<NgmVarioMap>(_map));
}

NgwAThread *NgcVarioMap::_createComputingThread(NgwThreadPool *pool)
{
  return new NgwVarioMap(pool, *this);
}

void NgcVarioMap::_postProcessing()
{
  _map = static_cast<const NgmVarioMap &>(_getAccumulator());
  _map.normalize();
  _setProgressMessageDetail(QObject::tr("Cleaning..."));
}
