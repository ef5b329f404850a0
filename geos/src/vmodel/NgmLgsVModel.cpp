#include "geos/vmodel/NgmLgsVModel.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/geom/NbgEDimension.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <algorithm>

NgmLgsVModel::NgmLgsVModel() : NgmVModel(1) {}

NgmLgsVModel::NgmLgsVModel(const NgmVModel &model) : NgmVModel(model)
{
  _takeBase();
}

NgmLgsVModel &NgmLgsVModel::operator=(const NgmVModel &model)
{
  NgmVModel::operator=(model);
  _takeBase();
  return *this;
}

QString NgmLgsVModel::getRoleRangeFactor()
{
  return QStringLiteral("ROLE_LGS_MODEL_RANGE_FACTOR");
}

QString NgmLgsVModel::getRoleRangeFactorU()
{
  return QStringLiteral("ROLE_LGS_MODEL_RANGE_FACTOR_U");
}

QString NgmLgsVModel::getRoleRangeFactorV()
{
  return QStringLiteral("ROLE_LGS_MODEL_RANGE_FACTOR_V");
}

QString NgmLgsVModel::getRoleRangeFactorW()
{
  return QStringLiteral("ROLE_LGS_MODEL_RANGE_FACTOR_W");
}

QString NgmLgsVModel::getRoleRot1()
{
  return QStringLiteral("ROLE_LGS_MODEL_ROTATION_1");
}

QString NgmLgsVModel::getRoleRot2()
{
  return QStringLiteral("ROLE_LGS_MODEL_ROTATION_2");
}

QString NgmLgsVModel::getRoleRot3()
{
  return QStringLiteral("ROLE_LGS_MODEL_ROTATION_3");
}

QStringList NgmLgsVModel::getRoles()
{
  return {getRoleRangeFactor(), getRoleRangeFactorU(), getRoleRangeFactorV(), getRoleRangeFactorW(),
          getRoleRot1(),        getRoleRot2(),         getRoleRot3()};
}

void NgmLgsVModel::setAnglesConvention(bool use, int conventionId)
{
  _useConvention = use;
  _conventionId = conventionId;
}

void NgmLgsVModel::registerVariables(const NbdDataTable &targets)
{
  _takeBase();
  registerTargets(targets);
}

void NgmLgsVModel::registerTargets(const NbdDataTable &targets)
{
  _table.clearTable();
  for (const QString &role : getRoles()) {
    if (const NbdAVariableNumeric *variable = targets.getVarNumeric(role))
      _table.addVariable(role, *variable);
  }
  _hasRange = _table.hasRole(getRoleRangeFactor()) || _table.hasRole(getRoleRangeFactorU()) ||
              _table.hasRole(getRoleRangeFactorV()) || _table.hasRole(getRoleRangeFactorW());
  _hasRotation = _table.hasRole(getRoleRot1());
}

void NgmLgsVModel::_takeBase()
{
  _base.clear();
  for (int index = 0; index < getNStructures(); ++index) {
    const NgmAVStruct &structure = getStructure(index);
    _base.push_back({structure.getPracticalRanges(), structure.getRotation()});
  }
}

bool NgmLgsVModel::patchModel(int sample)
{
  NbgVector3D factors(1., 1., 1.);
  const bool hasFactors = _getFactors(sample, factors);
  NbgRotation rotation;
  const bool turned = hasFactors && _getRotation(sample, rotation);
  for (int index = 0; index < getNStructures(); ++index) {
    const _Base &base = _base[std::size_t(index)];
    if (_hasRange)
      setRanges(index, hasFactors ? base.ranges.componentsProduct(factors) : base.ranges);
    if (_hasRotation)
      setRotation(index, turned ? rotation : base.rotation);
  }
  return hasFactors;
}

bool NgmLgsVModel::_getFactors(int sample, NbgVector3D &factors) const
{
  const double all = _value(getRoleRangeFactor(), sample, 1.);
  const double axes[] = {_value(getRoleRangeFactorU(), sample, 1.),
                         _value(getRoleRangeFactorV(), sample, 1.),
                         _value(getRoleRangeFactorW(), sample, 1.)};
  const auto isFactor = [](double value) { return NbbGlobal::isDefined(value) && value > 0.; };
  if (!isFactor(all) || !std::all_of(std::begin(axes), std::end(axes), isFactor))
    return false;
  factors = NbgVector3D(all * axes[0], all * axes[1], all * axes[2]);
  return true;
}

bool NgmLgsVModel::_getRotation(int sample, NbgRotation &rotation) const
{
  const NbgVector3D angles(_value(getRoleRot1(), sample, 0.), _value(getRoleRot2(), sample, 0.),
                           _value(getRoleRot3(), sample, 0.));
  if (!angles.isDefined())
    return false;
  rotation = NbgRotation(angles.x(), angles.y(), angles.z(), _useConvention ? _conventionId : 0);
  if (_force2D || getContext().getNDimensions() < 3)
    rotation.setDimension(NbgEDimension::DIM_2D);
  return true;
}

double NgmLgsVModel::_value(const QString &role, int sample, double absent) const
{
  const NbdAVariableNumeric *variable = _table.getVarNumeric(role);
  return variable ? variable->getValue(sample) : absent;
}

QString NgmLgsVModel::debug(int level) const
{
  return NgmVModel::debug(level) +
         QStringLiteral("Has Range : %1\n")
             .arg(_hasRange ? QStringLiteral("Yes") : QStringLiteral("No"));
}
