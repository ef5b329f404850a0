#include "geos/interpol/NgmLgsNeighborhoodMoving.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/geom/NbgEDimension.h"

namespace {

QVector<double> valuesOf(const NbdDataTable &table, const QString &role)
{
  QVector<double> values;
  if (const NbdAVariableNumeric *variable = table.getVarNumeric(role)) {
    values.reserve(variable->getNValues());
    for (int sample = 0; sample < variable->getNValues(); ++sample)
      values << variable->getValue(sample);
  }
  return values;
}

double valueAt(const QVector<double> &values, int sample, double absent)
{
  return values.isEmpty() ? absent : values[sample];
}

}  // namespace

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
  const QString factors[] = {getRoleRadiusFactor(), getRoleRadiusFactorU(), getRoleRadiusFactorV(),
                             getRoleRadiusFactorW()};
  const QString angles[] = {getRoleRot1(), getRoleRot2(), getRoleRot3()};
  _baseSize = getEllipseSize();
  _baseRotation = getEllipseRotation();
  _table.clearTable();
  for (const QString &role : factors)
    _register(role, targets);
  for (const QString &role : angles)
    _register(role, targets);
  _fixRadiusFactor();

  _hasRadius = _hasRotation = false;
  for (int i = 0; i < 4; ++i) {
    _radiusFactors[i] = valuesOf(_table, factors[i]);
    _hasRadius |= _table.hasRole(factors[i]);
  }
  for (int i = 0; i < 3; ++i) {
    _angles[i] = valuesOf(_table, angles[i]);
    _hasRotation |= _table.hasRole(angles[i]);
  }
}

void NgmLgsNeighborhoodMoving::_register(const QString &role, const NbdDataTable &targets)
{
  if (const NbdAVariableNumeric *variable = targets.getVarNumeric(role))
    _table.addVariable(role, *variable);
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

void NgmLgsNeighborhoodMoving::unpatchNeighborhood()
{
  if (!needPatching())
    return;
  setEllipseSize(_baseSize);
  setEllipseRotation(_baseRotation);
}

void NgmLgsNeighborhoodMoving::_patchRadiusFactor(int sample)
{
  if (!_hasRadius)
    return;
  const double all = valueAt(_radiusFactors[0], sample, 1.);
  const NbgVector3D factors(valueAt(_radiusFactors[1], sample, 1.),
                            valueAt(_radiusFactors[2], sample, 1.),
                            valueAt(_radiusFactors[3], sample, 1.));
  setEllipseSize((all * _baseSize).componentsProduct(factors));
}

void NgmLgsNeighborhoodMoving::_patchRotations(int sample)
{
  if (!_hasRotation)
    return;
  const NbgVector3D angles(valueAt(_angles[0], sample, 0.), valueAt(_angles[1], sample, 0.),
                           valueAt(_angles[2], sample, 0.));
  if (!angles.isDefined()) {
    setEllipseRotation(_baseRotation);
    return;
  }
  NbgRotation rotation(angles.x(), angles.y(), angles.z(), _useConvention ? _conventionId : 0);
  if (_force2D || _nDimensions < 3)
    rotation.setDimension(NbgEDimension::DIM_2D);
  setEllipseRotation(rotation);
}

QString NgmLgsNeighborhoodMoving::debug(int level) const
{
  return NgmNeighborhoodMoving::debug(level) +
         QStringLiteral("Has Radius : %1\n")
             .arg(_hasRadius ? QStringLiteral("Yes") : QStringLiteral("No"));
}
