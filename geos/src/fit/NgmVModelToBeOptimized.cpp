#include "geos/fit/NgmVModelToBeOptimized.h"

#include "basic/base/NbbMessage.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgVector3D.h"
#include "fit/private/NgmVModelStart.h"
#include "geos/stats/NgmVariogramExpData.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr int NUGGET = -1;
constexpr double MINIMUM_RANGE = 1e-30;

void check(bool isValid, const char *message)
{
  if (!isValid)
    throw NbeProgrammingError(QString::fromLatin1(message));
}

void checkUser(bool isValid, const QString &message)
{
  if (!isValid)
    throw NbeUserError(message);
}

QString number(double value, int digits)
{
  return QString::number(value, 'g', digits > 0 ? digits : 6);
}

QString flag(bool value)
{
  return value ? QObject::tr("yes") : QObject::tr("no");
}

QString elementsOf(const NgmMatrix &matrix)
{
  QStringList texts;
  for (qint64 k = 0; k < matrix.getNElements(); ++k)
    texts << QString::number(matrix.constElements()[k], 'g', 17);
  return texts.join(QLatin1Char(','));
}

QString textOf(const NbgVector3D &v)
{
  return QStringLiteral("%1,%2,%3")
      .arg(QString::number(v.x(), 'g', 17), QString::number(v.y(), 'g', 17),
           QString::number(v.z(), 'g', 17));
}

NgmMatrix oneByOne(double value)
{
  return NgmMatrix(1, &value);
}

}  // namespace

NgmVModelToBeOptimized::NgmVModelToBeOptimized(int nVariables)
    : NgmVModel(nVariables), _cumulativeSills(nVariables, NbbGlobal::D_FFFF)
{
}

NgmVModelToBeOptimized::NgmVModelToBeOptimized(const NgmVModel &model)
    : NgmVModel(model), _cumulativeSills(model.getNVariables(), NbbGlobal::D_FFFF)
{
}

NgmVModelToBeOptimized::~NgmVModelToBeOptimized() = default;

NgmVModelToBeOptimized::_Key NgmVModelToBeOptimized::_key(int structure, ParamType type, int index1,
                                                          int index2) const
{
  if (type == STRUCT)
    return {structure, STRUCT, 0, 0};
  if (type == SILL && index1 < index2)
    std::swap(index1, index2);
  return {structure, type, index1, type == SILL ? index2 : 0};
}

void NgmVModelToBeOptimized::_checkParam(int structure, ParamType type, int index1,
                                         int index2) const
{
  check(getNVariables() > 0 && isValid(), "Model must be valid first (Nb Var > 0 and Nb Cov > 0)");
  check(structure >= NUGGET && structure < getNStructures(), "Wrong covariance rank");
  check(structure != NUGGET || type == SILL || type == STRUCT, "Wrong parameter for nugget");
  const auto isVariable = [this](int i) { return i >= 0 && i < getNVariables(); };
  switch (type) {
    case SILL:
      check(isVariable(index1) && isVariable(index2), "Wrong variable rank");
      return;
    case AUX:
      check(index1 >= 0 && index1 < getStructure(structure).getNAuxiliaryParameters(),
            "wrong auxiliary parameter rank");
      return;
    case RANGE:
      check(index1 >= 0 && index1 < 3, "Wrong axis rank");
      return;
    case ROT:
      check(index1 >= 0 && index1 < 3, "wrong axis rank");
      return;
    case STRUCT:
      return;
  }
  check(false, "Unknown parameter type");
}

QList<NgmVModelToBeOptimized::_Key> NgmVModelToBeOptimized::_keysOf(int structure,
                                                                    ParamType type) const
{
  int count = 3;
  if (type == AUX)
    count = getStructure(structure).getNAuxiliaryParameters();
  else if (type == STRUCT)
    count = 1;
  QList<_Key> keys;
  for (int index = 0; index < count; ++index)
    keys << _key(structure, type, index, 0);
  return keys;
}

void NgmVModelToBeOptimized::setConstraint(ConstraintType constraint, int structure, ParamType type,
                                           int index1, int index2)
{
  check(type >= SILL && type <= STRUCT, "Unknown parameter type");
  _checkParam(structure, type, index1, index2);
  check(type != SILL, "No constraint for sills");
  check(type != STRUCT || constraint == LOCKED || constraint == AUTOMATIC,
        "Structures can only be locked");
  const _Key key = _key(structure, type, index1, index2);
  if (constraint == AUTOMATIC) {
    _constraints.remove(key);
    _bounds.remove(key);
    return;
  }
  if (constraint == LOCKED)
    _bounds.remove(key);
  _constraints.insert(key, constraint);
}

void NgmVModelToBeOptimized::setGenericConstraint(ConstraintType constraint, ParamType type)
{
  check(type >= SILL && type <= STRUCT, "Unknown parameter type");
  check(type != SILL, "No constraint for sills");
  for (int k = 0; k < getNStructures(); ++k) {
    const QList<_Key> keys = _keysOf(k, type);
    for (const _Key &key : keys)
      setConstraint(constraint, k, type, key.index1, key.index2);
  }
}

void NgmVModelToBeOptimized::setBounds(const NbiIntervalData &bounds, int structure, ParamType type,
                                       int index1, int index2)
{
  check(type >= SILL && type <= STRUCT, "Unknown parameter type");
  check(type != SILL, "No bounds constraint for sills");
  check(type != STRUCT, "No bounds constraint for structures");
  _checkParam(structure, type, index1, index2);
  check(!bounds.isEmpty(), "NgmVModelToBeOptimized::setBounds: empty interval");
  check(type != RANGE || !bounds.hasUpper() || bounds.getUpper() > 0.,
        "NgmVModelToBeOptimized::setBounds: wrong interval");
  double value = 0.;
  check(!isLocked(value, structure, type, index1, index2),
        "NgmVModelToBeOptimized::setBounds: Incompatible with locked status");
  check(!isDefault(value, structure, type, index1, index2) || bounds.isIncluded(value),
        "NgmVModelToBeOptimized::setBounds: Default value out of bounds");
  const _Key key = _key(structure, type, index1, index2);
  _bounds.insert(key, bounds);
  if (!_constraints.contains(key))
    _constraints.insert(key, BOUNDED);
}

NbiIntervalData NgmVModelToBeOptimized::getBounds(int structure, ParamType type, int index1,
                                                  int index2) const
{
  _checkParam(structure, type, index1, index2);
  return _bounds.value(_key(structure, type, index1, index2), NbiIntervalData::Infinite());
}

bool NgmVModelToBeOptimized::_isOf(ConstraintType constraint, const _Key &key) const
{
  const auto it = _constraints.constFind(key);
  return it != _constraints.constEnd() && *it == constraint;
}

bool NgmVModelToBeOptimized::isLocked(double &value, int structure, ParamType type, int index1,
                                      int index2) const
{
  _checkParam(structure, type, index1, index2);
  const bool isKnownNugget = structure == NUGGET && _hasKnownNugget;
  if (!isKnownNugget && !_isOf(LOCKED, {structure, STRUCT, 0, 0}) &&
      !_isOf(LOCKED, _key(structure, type, index1, index2)))
    return false;
  if (type != STRUCT)
    value = getParamValue(structure, type, index1, index2);
  return true;
}

bool NgmVModelToBeOptimized::isDefault(double &value, int structure, ParamType type, int index1,
                                       int index2) const
{
  _checkParam(structure, type, index1, index2);
  if (!_isOf(DEFAULT, _key(structure, type, index1, index2)))
    return false;
  value = getParamValue(structure, type, index1, index2);
  return true;
}

bool NgmVModelToBeOptimized::isAutomatic(int structure, ParamType type, int index1,
                                         int index2) const
{
  double value = 0.;
  return !isLocked(value, structure, type, index1, index2) &&
         !isDefault(value, structure, type, index1, index2);
}

double NgmVModelToBeOptimized::getParamValue(int structure, ParamType type, int index1,
                                             int index2) const
{
  if (type == SILL)
    return structure == NUGGET ? getNugget(index1, index2)
                               : getCoregionalisationMatrix(structure).getElement(index1, index2);
  check(structure != NUGGET, "Wrong parameter for nugget");
  if (type == AUX)
    return getStructure(structure).getAuxiliaryValue(index1);
  if (type == RANGE)
    return getStructure(structure).getPracticalRanges()[index1];
  check(type == ROT, "Unknown parameter type");
  NbgRotation rotation = getStructure(structure).getRotation();
  rotation.setConvention(0);
  return rotation.getAngles()[index1];
}

void NgmVModelToBeOptimized::setKnownRange(int structure, int axis, double range)
{
  check(structure >= 0 && structure < getNStructures(),
        "Invalid structure rank (use other function for nugget)");
  check(axis >= 0 && axis < 3, "Wrong axis rank");
  check(NbbGlobal::isDefined(range) && range > MINIMUM_RANGE, "Invalid known range provided");
  setRange(structure, axis, range);
  setConstraint(LOCKED, structure, RANGE, axis, 0);
}

void NgmVModelToBeOptimized::setKnownRanges(int structure, const NbgVector3D &ranges)
{
  for (int axis = 0; axis < getContext().getNDimensions(); ++axis)
    setKnownRange(structure, axis, ranges[axis]);
}

void NgmVModelToBeOptimized::setKnownSill(int structure, const NgmMatrix &sills)
{
  check(structure >= 0 && structure < getNStructures(),
        "Invalid structure rank (use other function for nugget)");
  check(sills.getNRows() == getNVariables() && sills.getNColumns() == getNVariables() &&
            sills.isSymmetrical() && sills.isPositiveDefinite(false, false),
        "Invalid known sill matrix provided");
  setCoregionalisationMatrix(structure, sills);
  for (int i = 0; i < getNVariables(); ++i) {
    for (int j = 0; j <= i; ++j)
      _constraints.insert(_key(structure, SILL, i, j), LOCKED);
  }
}

void NgmVModelToBeOptimized::setKnownRotation(int structure, const NbgRotation &rotation)
{
  check(structure >= 0 && structure < getNStructures(),
        "Invalid structure rank (use other function for nugget)");
  setRotation(structure, rotation);
  for (int angle = 0; angle < 3; ++angle)
    setConstraint(LOCKED, structure, ROT, angle, 0);
}

NgmMatrix NgmVModelToBeOptimized::_checkedNugget(const NgmMatrix &nugget, const char *message) const
{
  check(nugget.getNRows() == getNVariables() && nugget.getNColumns() == getNVariables() &&
            nugget.isSymmetrical() && nugget.isPositiveDefinite(false, false),
        message);
  return nugget;
}

void NgmVModelToBeOptimized::setKnownNugget(double nugget)
{
  check(getNVariables() == 1, "Nugget matrix is needed in multivariate case.");
  setKnownNuggetMatrix(oneByOne(nugget));
}

void NgmVModelToBeOptimized::setKnownNuggetMatrix(const NgmMatrix &nugget)
{
  NgmMatrix known = _checkedNugget(nugget, "Wrong known nugget matrix.");
  known.setMustBeSymmetrical(true);
  setNuggetMatrix(known);
  _hasKnownNugget = true;
}

void NgmVModelToBeOptimized::setMinNugget(double nugget)
{
  check(getNVariables() == 1, "Nugget matrix is needed in multivariate case.");
  setMinNuggetMatrix(oneByOne(nugget));
}

void NgmVModelToBeOptimized::setMinNuggetMatrix(const NgmMatrix &nugget)
{
  const NgmMatrix minimum = _checkedNugget(nugget, "Wrong min nugget matrix.");
  for (int i = 0; i < getNVariables() && hasMaxNugget(); ++i)
    check(minimum(i, i) <= _maxNugget(i, i), "Inconsistent min nugget matrix.");
  _minNugget = minimum;
}

void NgmVModelToBeOptimized::setMaxNugget(double nugget)
{
  check(getNVariables() == 1, "Nugget matrix is needed in multivariate case.");
  setMaxNuggetMatrix(oneByOne(nugget));
}

void NgmVModelToBeOptimized::setMaxNuggetMatrix(const NgmMatrix &nugget)
{
  NgmMatrix maximum = _checkedNugget(nugget, "Wrong max nugget matrix.");
  if (hasMinNugget()) {
    for (int i = 0; i < getNVariables(); ++i)
      check(maximum(i, i) >= _minNugget(i, i), "Inconsistent min nugget matrix.");
  }
  _maxNugget = maximum;
}

bool NgmVModelToBeOptimized::hasKnownNugget(NgmMatrix &nugget) const
{
  if (_hasKnownNugget)
    nugget = getNuggetMatrix();
  return _hasKnownNugget;
}

bool NgmVModelToBeOptimized::hasMinNugget(NgmMatrix &nugget) const
{
  if (hasMinNugget())
    nugget = _minNugget;
  return hasMinNugget();
}

bool NgmVModelToBeOptimized::hasMaxNugget(NgmMatrix &nugget) const
{
  if (hasMaxNugget())
    nugget = _maxNugget;
  return hasMaxNugget();
}

void NgmVModelToBeOptimized::setSillCumulativeConstraint(int variable, double sill)
{
  check(variable >= 0 && variable < getNVariables(),
        "NgmVModelToBeOptimized::setSillCumulativeConstraint: wrong variable index");
  _cumulativeSills[variable] = sill;
}

bool NgmVModelToBeOptimized::getSillCumulativeConstraint(QVector<double> &sills) const
{
  sills = _cumulativeSills;
  return std::any_of(sills.cbegin(), sills.cend(),
                     [](double sill) { return NbbGlobal::isDefined(sill); });
}

void NgmVModelToBeOptimized::fixModel(const NgmVariogramExpData &data)
{
  const int nDimensions = data.getNDimensions();
  if (getContext().getNDimensions() == nDimensions)
    return;
  NbbMessage::printWarning(
      QObject::tr("The Space Dimension in the Model (%1)\n").arg(getContext().getNDimensions()) +
      QObject::tr("does not match the Space dimension of the Variogram (%1)\n").arg(nDimensions) +
      QObject::tr("The Space Dimension of the Variogram is retained"));
  setContextNDim(nDimensions);
}

bool NgmVModelToBeOptimized::_hasKnownSills() const
{
  double value = 0.;
  bool isKnown = !_fitNugget && hasNugget();
  for (int k = -1; k < getNStructures(); ++k)
    isKnown = isKnown || isLocked(value, k, SILL, 0, 0);
  return isKnown;
}

/// Known sills are not rescaled: the fit shares out what they leave.
void NgmVModelToBeOptimized::fixSillConstraints()
{
  QVector<double> sills;
  if (!getSillCumulativeConstraint(sills) || _hasKnownSills())
    return;
  const NgmMatrix total = getC00Matrix();
  QVector<double> variances;
  for (int i = 0; i < getNVariables(); ++i)
    variances << (NbbGlobal::isDefined(sills[i]) ? sills[i] : total(i, i));
  const bool isPositive = std::all_of(variances.cbegin(), variances.cend(),
                                      [](double variance) { return variance > 0.; });
  bool hasSills = true;
  for (int i = 0; i < getNVariables(); ++i)
    hasSills = hasSills && total(i, i) > 0.;
  if (isPositive && hasSills)
    fitSillsToVariances(variances);
}

void NgmVModelToBeOptimized::alterModel(const NgmVariogramExpData &data)
{
  NgmVModelStart(data, *this).apply(*this);
}

bool NgmVModelToBeOptimized::_hasSillConstraint() const
{
  QVector<double> sills;
  bool isKnown = getSillCumulativeConstraint(sills);
  for (auto it = _constraints.cbegin(); it != _constraints.cend(); ++it)
    isKnown = isKnown || it.key().type == SILL;
  return isKnown;
}

void NgmVModelToBeOptimized::checkConsistency() const
{
  checkUser(_fitNugget || getNStructures() > 0, QObject::tr("Nothing to fit"));
  checkUser(_fitNugget || (!_hasKnownNugget && !hasMinNugget() && !hasMaxNugget()),
            QObject::tr("Cannot use nugget constraint without fitting nugget flag"));
  QVector<double> sills;
  checkUser(!(_wantIntrinsic && getSillCumulativeConstraint(sills)),
            QObject::tr("Intrinsics and Cumulative Sills constraints are incompatible"));
  checkUser(_nbMaxStruct >= -1,
            QObject::tr("Maximum number of basic structures must be greater or equal to -1"));
  checkUser(_nbMaxStruct != 0,
            QObject::tr("Maximum number of basic structures must be positive (or equal to -1)"));
  checkUser(_fitNugget || _nbMinStruct > 0,
            QObject::tr("Minimum number of basic structures must be positive if not fitting "
                        "nugget"));
  checkUser(_tolNugget >= 0. && _tolNugget <= 100.,
            QObject::tr("Wrong nugget sill tolerance (in %)"));
  checkUser(_tolSigma >= 0. && _tolSigma <= 100.,
            QObject::tr("Wrong structure sill tolerance (in %)"));
  _checkConstraintList();
}

void NgmVModelToBeOptimized::_checkConstraintList() const
{
  int nLocked = 0;
  for (auto it = _constraints.cbegin(); it != _constraints.cend(); ++it) {
    _checkConstraint(it.key());
    nLocked += it.key().type == STRUCT && it.key().structure >= 0 ? 1 : 0;
  }
  checkUser(_nbMaxStruct < 0 || nLocked <= _nbMaxStruct,
            QObject::tr("Too much constraints structures compared to initial model"));
}

void NgmVModelToBeOptimized::_checkConstraint(const _Key &key) const
{
  if (key.structure < 0)
    return;
  checkUser(key.structure < getNStructures(),
            QObject::tr("Too much constraints structures compared to initial model"));
  const NgmAVStruct &structure = getStructure(key.structure);
  const int nDim = getContext().getNDimensions();
  if (key.type == RANGE) {
    checkUser(structure.isScaleFactorSignificant(),
              QObject::tr("Range constraint defined for a structure for which Range is not "
                          "significant"));
    checkUser(key.index1 < nDim || !_isOf(BOUNDED, key),
              QObject::tr("Range index constraint defined exceeds Space Dimension"));
  }
  if (key.type == ROT)
    checkUser(nDim > 2 || key.index1 == 0 || !_isOf(BOUNDED, key),
              QObject::tr("Rotation Oy or Ox constraint defined which does not make sense for "
                          "Space Dimension"));
  if (key.type == AUX)
    checkUser(key.index1 < structure.getNAuxiliaryParameters(),
              QObject::tr("Auxiliary parameter constraint defined for a structure without "
                          "auxiliary parameter"));
  const NbiIntervalData bounds = _bounds.value(key);
  checkUser(!_isOf(DEFAULT, key) ||
                bounds.isIncluded(getParamValue(key.structure, key.type, key.index1, key.index2)),
            QObject::tr("Constraint value outside bounds"));
}

int NgmVModelToBeOptimized::addStructure(const QString &label)
{
  return NgmVModel::addStructure(label, 1.);
}

QString NgmVModelToBeOptimized::getParamLabel(ParamType type)
{
  switch (type) {
    case SILL:
      return QObject::tr("Sill");
    case AUX:
      return QObject::tr("Aux");
    case RANGE:
      return QObject::tr("Range");
    case ROT:
      return QObject::tr("Rot");
    case STRUCT:
      return QObject::tr("Struct");
  }
  return QObject::tr("Unknown");
}

void NgmVModelToBeOptimized::setNVariables(int nVariables)
{
  if (nVariables == getNVariables())
    return;
  NgmVModel::setNVariables(nVariables);
  _constraints.clear();
  _bounds.clear();
  _hasKnownNugget = false;
  removeMinNugget();
  removeMaxNugget();
  _cumulativeSills = QVector<double>(nVariables, NbbGlobal::D_FFFF);
}

bool NgmVModelToBeOptimized::isValid() const
{
  return getNVariables() > 0 && (_fitNugget || NgmVModel::isValid());
}

void NgmVModelToBeOptimized::removeNugget()
{
  NgmVModel::removeNugget();
  _fitNugget = false;
  _hasKnownNugget = false;
  removeMinNugget();
  removeMaxNugget();
}

void NgmVModelToBeOptimized::removeStructure(int index)
{
  NgmVModel::removeStructure(index);
  const auto renumbered = [index](const auto &map) {
    typename std::decay<decltype(map)>::type result;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
      _Key key = it.key();
      if (key.structure == index)
        continue;
      key.structure -= key.structure > index ? 1 : 0;
      result.insert(key, it.value());
    }
    return result;
  };
  _constraints = renumbered(_constraints);
  _bounds = renumbered(_bounds);
}

void NgmVModelToBeOptimized::_rescaleBounds(double factor)
{
  for (auto it = _bounds.begin(); it != _bounds.end(); ++it) {
    if (it.key().type != RANGE)
      continue;
    const NbiIntervalData &old = it.value();
    it.value() = NbiIntervalData(old.hasLower() ? old.getLower() * factor : old.getLower(),
                                 old.hasUpper() ? old.getUpper() * factor : old.getUpper(),
                                 old.isLowerIncluded(), old.isUpperIncluded());
  }
}

void NgmVModelToBeOptimized::normalizeSillsAndRanges(double maxDist, const NgmMatrix &variances)
{
  check(!_hasSillConstraint(), "NgmVModelToBeOptimized::normalizeModel: No constraint for sills");
  NgmVModel::normalizeSillsAndRanges(maxDist, variances);
  _rescaleBounds(1. / maxDist);
}

void NgmVModelToBeOptimized::denormalizeSillsAndRanges(double maxDist, const NgmMatrix &variances)
{
  check(!_hasSillConstraint(), "NgmVModelToBeOptimized::normalizeModel: No constraint for sills");
  NgmVModel::denormalizeSillsAndRanges(maxDist, variances);
  _rescaleBounds(maxDist);
}

QStringList NgmVModelToBeOptimized::summary(bool withDimensions, bool withSills, int digits) const
{
  return NgmVModel::summary(withDimensions, withSills, digits) + _globalSummary(digits) +
         _constraintSummary(digits);
}

QStringList NgmVModelToBeOptimized::_globalSummary(int digits) const
{
  QStringList lines{QObject::tr("Global constraints:")};
  lines << QObject::tr("- Fit nugget                    = %1").arg(flag(_fitNugget))
        << QObject::tr("- Fit sills only                = %1").arg(flag(_fitSillsOnly))
        << QObject::tr("- Authorize anisotropy          = %1").arg(flag(_authAniso))
        << QObject::tr("- Authorize anisotropy rotation = %1").arg(flag(_authRotation))
        << QObject::tr("- Authorize compression         = %1").arg(flag(_authCompress))
        << QObject::tr("- Global rotation only          = %1").arg(flag(_lockSameRot))
        << QObject::tr("- Rotation around Z only        = %1").arg(flag(_lockRot2D))
        << QObject::tr("- Lock the 3rd dimension        = %1").arg(flag(_lockNo3D))
        << QObject::tr("- Force isotropy in 2-D         = %1").arg(flag(_lockIso2D))
        << QObject::tr("- Force intrinsic model         = %1").arg(flag(_wantIntrinsic))
        << QObject::tr("- Minimal sill for nugget (%)   = %1").arg(number(_tolNugget, digits))
        << QObject::tr("- Minimal sill for struct. (%)  = %1").arg(number(_tolSigma, digits))
        << QObject::tr("- Minimum number of structures  = %1").arg(_nbMinStruct)
        << QObject::tr("- Maximum number of structures  = %1").arg(_nbMaxStruct);
  if (_hasKnownNugget && getNVariables() > 1)
    lines << QObject::tr("- Known nugget matrix:")
          << getNuggetMatrix().toString(-1, digits, QStringLiteral(" "));
  else if (_hasKnownNugget)
    lines
        << QObject::tr("- Known nugget                  = %1").arg(number(getNugget(0, 0), digits));
  else
    lines << QObject::tr("- Known nugget                  = no");
  return lines;
}

QStringList NgmVModelToBeOptimized::_constraintSummary(int digits) const
{
  QStringList lines;
  lines << (_constraints.isEmpty() ? QObject::tr("Parameter constraint list is empty.")
                                   : QObject::tr("Parameter constraint list:"));
  for (auto it = _constraints.cbegin(); it != _constraints.cend(); ++it) {
    const _Key &key = it.key();
    QString line = QObject::tr("Structure #%1 - %2(%3,%4)")
                       .arg(QString::number(key.structure + 1), getParamLabel(key.type),
                            QString::number(key.index1 + 1), QString::number(key.index2 + 1));
    if (key.type != STRUCT && it.value() != BOUNDED) {
      const double value = getParamValue(key.structure, key.type, key.index1, key.index2);
      line += QLatin1Char(' ') +
              (it.value() == LOCKED ? QObject::tr("= %1 [Locked]") : QObject::tr("= %1 [Default]"))
                  .arg(number(value, digits));
    }
    if (_bounds.contains(key))
      line += QLatin1Char(' ') + QObject::tr("- Bounds") + QLatin1Char(' ') +
              _bounds.value(key).toString();
    lines << line;
  }
  QVector<double> sills;
  lines << (getSillCumulativeConstraint(sills)
                ? QObject::tr("Sum of sills constraint list:")
                : QObject::tr("Sum of sills constraint list is empty."));
  for (int i = 0; i < sills.size(); ++i) {
    if (NbbGlobal::isDefined(sills[i]))
      lines << QObject::tr("- Variable #%1 = %2 [Fixed]")
                   .arg(QString::number(i + 1), number(sills[i], digits));
  }
  return lines;
}

QString NgmVModelToBeOptimized::toString() const
{
  QStringList lines;
  lines << QStringLiteral("nbVariables=%1").arg(getNVariables())
        << QStringLiteral("nbDimensions=%1").arg(getContext().getNDimensions())
        << QStringLiteral("fitNugget=%1").arg(int(_fitNugget))
        << QStringLiteral("fitSillsOnly=%1").arg(int(_fitSillsOnly))
        << QStringLiteral("authAniso=%1").arg(int(_authAniso))
        << QStringLiteral("authRotation=%1").arg(int(_authRotation))
        << QStringLiteral("authCompress=%1").arg(int(_authCompress))
        << QStringLiteral("lockSameRot=%1").arg(int(_lockSameRot))
        << QStringLiteral("lockRot2D=%1").arg(int(_lockRot2D))
        << QStringLiteral("lockNo3D=%1").arg(int(_lockNo3D))
        << QStringLiteral("lockIso2D=%1").arg(int(_lockIso2D))
        << QStringLiteral("wantIntrinsic=%1").arg(int(_wantIntrinsic))
        << QStringLiteral("tolNugget=%1").arg(_tolNugget)
        << QStringLiteral("tolSigma=%1").arg(_tolSigma)
        << QStringLiteral("nbMinStruct=%1").arg(_nbMinStruct)
        << QStringLiteral("nbMaxStruct=%1").arg(_nbMaxStruct)
        << QStringLiteral("maxIrfDegree=%1").arg(getContext().getMaxIrfDegree());
  if (_hasKnownNugget)
    lines << QStringLiteral("knownNugget=%1").arg(elementsOf(getNuggetMatrix()));
  else if (hasNugget())
    lines << QStringLiteral("nugget=%1").arg(elementsOf(getNuggetMatrix()));
  for (int k = 0; k < getNStructures(); ++k) {
    const NgmAVStruct &structure = getStructure(k);
    const QString rank = QString::number(k);
    lines
        << QStringLiteral("structure=%1").arg(structure.getType().getKeyString())
        << QStringLiteral("sills=%1;%2").arg(rank, elementsOf(getCoregionalisationMatrix(k)))
        << QStringLiteral("ranges=%1;%2").arg(rank, textOf(structure.getPracticalRanges()))
        << QStringLiteral("rotation=%1;%2").arg(rank, textOf(structure.getRotation().getAngles()));
    for (int a = 0; a < structure.getNAuxiliaryParameters(); ++a)
      lines << QStringLiteral("auxiliary=%1;%2;%3")
                   .arg(rank, QString::number(a),
                        QString::number(structure.getAuxiliaryValue(a), 'g', 17));
  }
  const auto coordinates = [](const _Key &key) {
    return QStringLiteral("%1,%2,%3,%4")
        .arg(QString::number(key.structure), QString::number(int(key.type)),
             QString::number(key.index1), QString::number(key.index2));
  };
  for (auto it = _constraints.cbegin(); it != _constraints.cend(); ++it)
    lines << QStringLiteral("userConstraint=%1;%2")
                 .arg(coordinates(it.key()), QString::number(int(it.value())));
  for (auto it = _bounds.cbegin(); it != _bounds.cend(); ++it)
    lines << QStringLiteral("boundsConstraint=%1;%2")
                 .arg(coordinates(it.key()), it.value().toString());
  for (int i = 0; i < _cumulativeSills.size(); ++i) {
    if (NbbGlobal::isDefined(_cumulativeSills[i]))
      lines << QStringLiteral("sillCumulativeConstraint=%1;%2")
                   .arg(QString::number(i), QString::number(_cumulativeSills[i], 'g', 17));
  }
  return lines.join(QLatin1Char('\n'));
}
