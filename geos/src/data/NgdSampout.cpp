#include "geos/data/NgdSampout.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/interval/NbiIntervalIntSmallO64.h"
#include "basic/provider/NbpIProviderW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdVariableRules.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"

#include <QMutexLocker>

#include <cmath>

namespace {

/// "I_" or "O_" in front of the name of the variable that an auxiliary one follows.
constexpr int sourceLength = 2;

void addRule(NgdVariableRules &rules, const QString &role, Nbd::EVariableType type, int min,
             int max)
{
  rules.registerRole(NgdSampout::getDatasetId(), role, Nbd::ACCESS_WRITE, type);
  rules.addRuleCount(NgdSampout::getDatasetId(), role, min, max);
}

void setIfPresent(NbdAVariableNumeric *variable, int row, double value)
{
  if (variable)
    variable->setValue(row, value);
}

/// An undefined code stays the variable's undefined value.
void setIfPresent(NbdAVariableNumeric *variable, int row, int code)
{
  if (variable && NbbGlobal::isDefined(code))
    variable->setValue(row, code);
}

void setLocation(NbdAVariableNumeric *const (&variables)[3], int row, const NbgVector3D &location)
{
  for (int axis = 0; axis < 3; ++axis)
    setIfPresent(variables[axis], row, location[axis]);
}

void checkAuxiliaryName(const QString &name)
{
  if (name.size() <= sourceLength)
    throw NbeProgrammingError(
        QStringLiteral("Invalid auxiliary variable name for the sampout file."));
}

/// The value that an auxiliary variable follows, or null.
template <class T>
const T *findSource(const QString &name, const QMap<QString, T> &input,
                    const QMap<QString, T> &output)
{
  const bool isInput = name.startsWith(QLatin1Char('I'));
  if (!isInput && !name.startsWith(QLatin1Char('O')))
    return nullptr;
  const QMap<QString, T> &values = isInput ? input : output;
  const auto found = values.constFind(name.mid(sourceLength));
  return found == values.constEnd() ? nullptr : &*found;
}

}  // namespace

QString NgdSampout::getDatasetId()
{
  return QStringLiteral("DS_SAMPOUT");
}

QString NgdSampout::getRoleBlockCenter()
{
  return QStringLiteral("ROLE_BLOCK_CENTER");
}

QString NgdSampout::getRoleNeighborCoor()
{
  return QStringLiteral("ROLE_NEIGH_COOR");
}

QString NgdSampout::getRoleGradeValue()
{
  return QStringLiteral("ROLE_GRADE_VALUE");
}

QString NgdSampout::getRoleWeight()
{
  return QStringLiteral("ROLE_WEIGHT");
}

QString NgdSampout::getRoleDistanceEuclid()
{
  return QStringLiteral("ROLE_DIST_EUCLID");
}

QString NgdSampout::getRoleDistanceAniso()
{
  return QStringLiteral("ROLE_DIST_ANISO");
}

QString NgdSampout::getRoleGradeName()
{
  return QStringLiteral("ROLE_GRADE_NAME");
}

QString NgdSampout::getRoleCode()
{
  return QStringLiteral("ROLE_VAR_CODE");
}

QString NgdSampout::getRoleCodeCount()
{
  return QStringLiteral("ROLE_CODE_COUNT");
}

QString NgdSampout::getRoleAuxiliary()
{
  return QStringLiteral("ROLE_AUXILIARY");
}

QString NgdSampout::getRoleAuxiliaryString()
{
  return QStringLiteral("ROLE_AUXILIARY_STRING");
}

QString NgdSampout::getRoleRhs()
{
  return QStringLiteral("ROLE_RHS");
}

void NgdSampout::setBlockModelGridGeom(const NbgVector3D &origin, const NbgVector3D &cellSize,
                                       const NbgRotation &rotation)
{
  _origin = origin;
  _cellSize = cellSize;
  _inverseRotation = rotation.inverse();
}

void NgdSampout::registerInterpolConstraints(NgdVariableRules &rules) const
{
  if (!_dataSet)
    throw NbeProgrammingError(
        QStringLiteral("NgdSampout::addRuntimeConstraints: no dataset defined"));
  const int nDimensions = _dataSet->getNDimensions();
  addRule(rules, getRoleBlockCenter(), Nbd::TYPE_DOUBLE, nDimensions, nDimensions);
  addRule(rules, getRoleNeighborCoor(), Nbd::TYPE_DOUBLE, nDimensions, nDimensions);
  for (const QString &role :
       {getRoleGradeValue(), getRoleWeight(), getRoleDistanceEuclid(), getRoleDistanceAniso()})
    addRule(rules, role, Nbd::TYPE_DOUBLE, 1, 1);
  addRule(rules, getRoleGradeName(), Nbd::TYPE_ALPHA, 1, 1);
  addRule(rules, getRoleCode(), Nbd::TYPE_INT32, 0, 1);
  addRule(rules, getRoleCodeCount(), Nbd::TYPE_INT32, 0, 1);
  addRule(rules, getRoleAuxiliary(), Nbd::TYPE_DOUBLE, 0, -1);
  addRule(rules, getRoleAuxiliaryString(), Nbd::TYPE_ALPHA, 0, -1);
}

void NgdSampout::registerKrigingConstraints(NgdVariableRules &rules) const
{
  const int n = _hasRhs ? 1 : 0;
  addRule(rules, getRoleRhs(), Nbd::TYPE_DOUBLE, n, n);
}

NgdSampout::ThreadContext *NgdSampout::initWorker(bool rectangular) const
{
  if (!_dataSet)
    throw NbeProgrammingError(QStringLiteral("NgdSampout::init: no sampout dataset"));
  return new ThreadContext(*this, rectangular);
}

void NgdSampout::addNeighbor(ThreadContext &context, const Neighbor &neighbor,
                             const Auxiliary &input, const Auxiliary &output) const
{
  const int row = context._nRows;
  context._appendRow();
  setLocation(context._blockCenter, row, _findBlockCenter(context._target));
  setLocation(context._neighborCoor, row, neighbor.location);
  setIfPresent(context._value, row, neighbor.value);
  setIfPresent(context._weight, row, neighbor.weight);
  context._writeDistances(row, neighbor.location - context._target);
  if (context._name)
    context._name->setValue(row, neighbor.variableName);
  setIfPresent(context._code, row, neighbor.code);
  setIfPresent(context._codeCount, row, neighbor.codeCount);
  setIfPresent(context._rhs, row, neighbor.rhs);
  context._writeAuxiliary(row, input, output);
}

void NgdSampout::sampoutEndTarget(ThreadContext &context)
{
  const int n = context._nRows;
  if (n == 0)
    return;
  {
    const QMutexLocker locker(&_mutex);
    const qint64 first = _dataSet->getNSamples();
    const QSharedPointer<NbpIProviderW> provider = _dataSet->getDataProviderW();
    if (!provider->appendSamples(n))
      throw NbeProgrammingError(provider->getLastError());
    _dataSet->saveFromBuffer(NbiIntervalIntSmallO64(first, first + n - 1), context._buffer);
  }
  context._clear();
}

QMap<QString, double> NgdSampout::prepareAuxiliaryData(
    const QList<NbdAVariableNumeric *> &variables, int sample)
{
  QMap<QString, double> values;
  for (const NbdAVariableNumeric *variable : variables)
    values.insert(variable->getName(), variable->getValue(sample));
  return values;
}

QMap<QString, QString> NgdSampout::prepareAuxiliaryStringData(
    const QList<NbdVariableAlpha *> &variables, int sample)
{
  QMap<QString, QString> texts;
  for (const NbdVariableAlpha *variable : variables)
    texts.insert(variable->getName(), variable->getValue(sample));
  return texts;
}

/// A target on the border of two cells belongs to the upper one.
NbgVector3D NgdSampout::_findBlockCenter(const NbgVector3D &target) const
{
  const NbgVector3D local = _inverseRotation.localToWorld(target - _origin);
  NbgVector3D center;
  for (int axis = 0; axis < 3; ++axis) {
    const double cell = _cellSize[axis];
    center[axis] = cell > 0. ? std::floor(local[axis] / cell + 0.5) * cell : local[axis];
  }
  if (_cellSize == NbgVector3D())
    return target;
  return _origin + _inverseRotation.worldToLocal(center);
}

NgdSampout::ThreadContext::ThreadContext(const NgdSampout &sampout, bool rectangular)
    : _rectangular(rectangular)
{
  sampout._dataSet->createAllVariables(_buffer, false, false);
  const NbdDataTable &table = _buffer.getDataTableConst();
  for (int axis = 0; axis < 3; ++axis) {
    _blockCenter[axis] = table.getVarNumeric(getRoleBlockCenter(), axis);
    _neighborCoor[axis] = table.getVarNumeric(getRoleNeighborCoor(), axis);
  }
  _value = table.getVarNumeric(getRoleGradeValue());
  _weight = table.getVarNumeric(getRoleWeight());
  _distanceEuclid = table.getVarNumeric(getRoleDistanceEuclid());
  _distanceAniso = table.getVarNumeric(getRoleDistanceAniso());
  _name = table.getVarAlpha(getRoleGradeName());
  _code = table.getVarNumeric(getRoleCode());
  _codeCount = table.getVarNumeric(getRoleCodeCount());
  _rhs = table.getVarNumeric(getRoleRhs());
  _auxiliary = table.getVarsNumeric(getRoleAuxiliary());
  _auxiliaryStrings = table.getVarsAlpha(getRoleAuxiliaryString());
}

void NgdSampout::ThreadContext::setSearchEllipsoid(const NgmNeighborhoodMoving &parameters)
{
  _rotation = parameters.getEllipseRotation().inverse();
  for (int axis = 0; axis < 3; ++axis) {
    const double radius = parameters.getEllipseSize()[axis];
    _scale[axis] = radius > 0. ? 1. / radius : 0.;
  }
}

void NgdSampout::ThreadContext::_appendRow()
{
  _buffer.appendSamples(1);
  ++_nRows;
}

void NgdSampout::ThreadContext::_writeDistances(int row, const NbgVector3D &difference)
{
  const NbgVector3D scaled = _rotation.localToWorld(difference).componentsProduct(_scale);
  const double squared =
      _rectangular ? scaled.squaredChebychevDist()
                   : scaled.x() * scaled.x() + scaled.y() * scaled.y() + scaled.z() * scaled.z();
  setIfPresent(_distanceEuclid, row,
               std::sqrt(difference.x() * difference.x() + difference.y() * difference.y() +
                         difference.z() * difference.z()));
  setIfPresent(_distanceAniso, row, std::sqrt(squared));
}

void NgdSampout::ThreadContext::_writeAuxiliary(int row, const Auxiliary &input,
                                                const Auxiliary &output)
{
  for (NbdAVariableNumeric *variable : qAsConst(_auxiliary)) {
    checkAuxiliaryName(variable->getName());
    if (const double *value = findSource(variable->getName(), input.values, output.values))
      variable->setValue(row, *value);
  }
  for (NbdVariableAlpha *variable : qAsConst(_auxiliaryStrings)) {
    checkAuxiliaryName(variable->getName());
    const QString *text = findSource(variable->getName(), input.texts, output.texts);
    variable->setValue(row, text ? *text : QString());
  }
}

void NgdSampout::ThreadContext::_clear()
{
  _buffer.clearSamples();
  _nRows = 0;
}
