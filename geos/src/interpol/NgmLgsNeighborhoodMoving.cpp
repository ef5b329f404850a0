#include "geos/interpol/NgmLgsNeighborhoodMoving.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/geom/NbgEDimension.h"

NgmLgsNeighborhoodMoving::NgmLgsNeighborhoodMoving(const NgmNeighborhoodMoving &parameters)
    : NgmNeighborhoodMoving(parameters)
{
}

NgmLgsNeighborhoodMoving &NgmLgsNeighborhoodMoving::operator=(
    const NgmNeighborhoodMoving &parameters)
{
  NgmNeighborhoodMoving::operator=(parameters);
  _baseSize = getEllipseSize();
  _baseRotation = getEllipseRotation();
  return *this;
}

QString NgmLgsNeighborhoodMoving::getRoleRadiusFactor()
{
  return QStringLiteral("ROLE_LGS_NEIGH_RADIUS_FACTOR");
}

QString NgmLgsNeighborhoodMoving::getRoleRadiusFactorU()
{
  return QStringLiteral("ROLE_LGS_NEIGH_RADIUS_FACTOR_U");
}

QString NgmLgsNeighborhoodMoving::getRoleRadiusFactorV()
{
  return QStringLiteral("ROLE_LGS_NEIGH_RADIUS_FACTOR_V");
}

QString NgmLgsNeighborhoodMoving::getRoleRadiusFactorW()
{
  return QStringLiteral("ROLE_LGS_NEIGH_RADIUS_FACTOR_W");
}

QString NgmLgsNeighborhoodMoving::getRoleRot1()
{
  return QStringLiteral("ROLE_LGS_NEIGH_ROTATION_1");
}

QString NgmLgsNeighborhoodMoving::getRoleRot2()
{
  return QStringLiteral("ROLE_LGS_NEIGH_ROTATION_2");
}

QString NgmLgsNeighborhoodMoving::getRoleRot3()
{
  return QStringLiteral("ROLE_LGS_NEIGH_ROTATION_3");
}

void NgmLgsNeighborhoodMoving::setAnglesConvention(bool use, int conventionId)
{
  _useConvention = use;
  _conventionId = conventionId;
}

void NgmLgsNeighborhoodMoving::registerVariables(const NbdDataTable &targets)
{
  _baseSize = getEllipseSize();
  _baseRotation = getEllipseRotation();
  _table.clearTable();
  for (const QString &role :
       {getRoleRadiusFactor(), getRoleRadiusFactorU(), getRoleRadiusFactorV(),
        getRoleRadiusFactorW(), getRoleRot1(), getRoleRot2(), getRoleRot3()}) {
    if (const NbdAVariableNumeric *variable = targets.getVarNumeric(role))
      _table.addVariable(role, *variable);
  }
  _hasRadius = _table.hasRole(getRoleRadiusFactor()) || _table.hasRole(getRoleRadiusFactorU()) ||
               _table.hasRole(getRoleRadiusFactorV()) || _table.hasRole(getRoleRadiusFactorW());
  _hasRotation = _table.hasRole(getRoleRot1());
  _fixRadiusFactor();
}

void NgmLgsNeighborhoodMoving::_fixRadiusFactor()
{
  for (const QString &role : {getRoleRadiusFactor(), getRoleRadiusFactorU(), getRoleRadiusFactorV(),
                              getRoleRadiusFactorW()}) {
    NbdAVariableNumeric *variable = _table.getVarNumeric(role);
    if (!variable || !variable->hasUndefined())
      continue;
    for (int sample = 0; sample < variable->getNValues(); ++sample) {
      if (variable->isUndefined(sample))
        variable->setValue(sample, 0.);
    }
  }
}

bool NgmLgsNeighborhoodMoving::patchNeighborhood(int sample)
{
  if (sample < 0 || sample >= _table.getNSamples())
    return false;
  _patchRadiusFactor(sample);
  _patchRotations(sample);
  return true;
}

void NgmLgsNeighborhoodMoving::_patchRadiusFactor(int sample)
{
  if (!_hasRadius)
    return;
  const double all = _value(getRoleRadiusFactor(), sample, 1.);
  const NbgVector3D factors(_value(getRoleRadiusFactorU(), sample, 1.),
                            _value(getRoleRadiusFactorV(), sample, 1.),
                            _value(getRoleRadiusFactorW(), sample, 1.));
  setEllipseSize((all * _baseSize).componentsProduct(factors));
}

void NgmLgsNeighborhoodMoving::_patchRotations(int sample)
{
  if (!_hasRotation)
    return;
  const NbgVector3D angles(_value(getRoleRot1(), sample, 0.), _value(getRoleRot2(), sample, 0.),
                           _value(getRoleRot3(), sample, 0.));
  if (!angles.isDefined()) {
    setEllipseRotation(_baseRotation);
    return;
  }
  NbgRotation rotation(angles.x(), angles.y(), angles.z(), _useConvention ? _conventionId : 0);
  if (_force2D || _nDimensions < 3)
    rotation.setDimension(NbgEDimension::DIM_2D);
  setEllipseRotation(rotation);
}

double NgmLgsNeighborhoodMoving::_value(const QString &role, int sample, double absent) const
{
  const NbdAVariableNumeric *variable = _table.getVarNumeric(role);
  return variable ? variable->getValue(sample) : absent;
}

QString NgmLgsNeighborhoodMoving::debug(int level) const
{
  return NgmNeighborhoodMoving::debug(level) +
         QStringLiteral("Has Radius : %1\n")
             .arg(_hasRadius ? QStringLiteral("Yes") : QStringLiteral("No"));
}
