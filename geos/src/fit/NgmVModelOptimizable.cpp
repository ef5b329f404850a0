#include "geos/fit/NgmVModelOptimizable.h"

#include "basic/base/NbbDebug.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "fit/private/NgmFitWeights.h"
#include "fit/private/NgmUnitVariogram.h"
#include "geos/matrix/NgcMacros.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVStructFactory.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

using ToBeOptimized = NgmVModelToBeOptimized;

constexpr int NUGGET = -1;
constexpr double NULL_VECTOR = 1e-10;
constexpr double DEGREE = 0.017453292519943295;

// Practical ranges that are looked for, in units of the largest lag distance and of the smallest.
constexpr double LARGEST_RANGE = 5.;
constexpr double SMALLEST_RANGE = 0.5;
constexpr double POSITIVE_RANGE = 1e-6;

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

bool isNull(const NbgVector3D &h)
{
  return std::fabs(h.x()) < NULL_VECTOR && std::fabs(h.y()) < NULL_VECTOR &&
         std::fabs(h.z()) < NULL_VECTOR;
}

bool hasRange(const NgmAVStruct &structure)
{
  return structure.isScaleFactorSignificant();
}

NbiIntervalData scaled(const NbiIntervalData &bounds, double factor)
{
  return NbiIntervalData(bounds.hasLower() ? bounds.getLower() * factor : bounds.getLower(),
                         bounds.hasUpper() ? bounds.getUpper() * factor : bounds.getUpper(),
                         bounds.isLowerIncluded(), bounds.isUpperIncluded());
}

double inHalfTurn(double degrees)
{
  const double angle = std::fmod(degrees, 180.);
  return angle < 0. ? angle + 180. : angle;
}

}  // namespace

struct NgmVModelOptimizable::_Geometry
{
  NbgVector3D ranges;
  NbgVector3D angles;
  std::vector<double> auxiliaries;

  static _Geometry of(const NgmAVStruct &structure)
  {
    NbgRotation rotation = structure.getRotation();
    rotation.setConvention(0);
    _Geometry geometry{structure.getPracticalRanges(), rotation.getAngles(), {}};
    for (int a = 0; a < structure.getNAuxiliaryParameters(); ++a)
      geometry.auxiliaries.push_back(structure.getAuxiliaryValue(a));
    return geometry;
  }

  bool hasRangesOf(const _Geometry &other) const
  {
    return ranges.x() == other.ranges.x() && ranges.y() == other.ranges.y() &&
           ranges.z() == other.ranges.z();
  }
  bool hasAnglesOf(const _Geometry &other) const
  {
    return angles.x() == other.angles.x() && angles.y() == other.angles.y() &&
           angles.z() == other.angles.z();
  }
  bool operator==(const _Geometry &other) const
  {
    return hasRangesOf(other) && hasAnglesOf(other) && auxiliaries == other.auxiliaries;
  }
  NbgRotation rotation() const { return NbgRotation(angles.x(), angles.y(), angles.z()); }
};

/// Sills by lower triangle, the nugget first.
struct NgmVModelOptimizable::_State
{
  std::vector<std::vector<double>> sills;
  std::vector<_Geometry> geometries;

  static _State of(const NgmVModel &model)
  {
    _State state;
    state.sills.push_back(_triangle(model.getNuggetMatrix()));
    for (int k = 0; k < model.getNStructures(); ++k) {
      state.sills.push_back(_triangle(model.getCoregionalisationMatrix(k)));
      state.geometries.push_back(_Geometry::of(model.getStructure(k)));
    }
    return state;
  }

  NgmMatrix matrix(int nVariables, int index) const
  {
    NgmMatrix matrix(nVariables, nVariables, true);
    for (int i = 0; i < nVariables; ++i) {
      for (int j = 0; j <= i; ++j)
        matrix.setElement(i, j, sills[std::size_t(index)][std::size_t(combineVariables(i, j))]);
    }
    return matrix;
  }

private:
  static std::vector<double> _triangle(const NgmMatrix &matrix)
  {
    std::vector<double> triangle;
    for (int i = 0; i < matrix.getNRows(); ++i) {
      for (int j = 0; j <= i; ++j)
        triangle.push_back(matrix(i, j));
    }
    return triangle;
  }
};

/// The last computed variogram of each structure is kept until its geometry changes, so that what
/// moves sills only costs sums.
class NgmVModelOptimizable::_Curves
{
public:
  _Curves(const NgmVModel &model, const std::vector<NbgVector3D> &lags)
  {
    for (const NbgVector3D &lag : lags) {
      _lags.append(lag);
      _nugget.push_back(isNull(lag) ? 0. : 1.);
    }
    for (int k = 0; k < model.getNStructures(); ++k) {
      _Curve curve;
      curve.structure = NgmVStructFactory::createVStruct(model.getStructure(k));
      curve.geometry = _Geometry::of(model.getStructure(k));
      curve.values.resize(lags.size());
      _curves.push_back(std::move(curve));
      _compute(_curves.back());
    }
  }

  /// The nugget is curve 0, structure k curve k + 1.
  const double *values(std::size_t index) const
  {
    return index == 0 ? _nugget.data() : _curves[index - 1].values.data();
  }

  void update(const std::vector<_Geometry> &geometries)
  {
    for (std::size_t k = 0; k < _curves.size(); ++k) {
      if (_curves[k].geometry == geometries[k])
        continue;
      _change(_curves[k], geometries[k]);
      _compute(_curves[k]);
    }
  }

private:
  struct _Curve
  {
    std::unique_ptr<NgmAVStruct> structure;
    _Geometry geometry;
    std::vector<double> values;
  };

  static void _change(_Curve &curve, const _Geometry &geometry)
  {
    if (geometry.auxiliaries != curve.geometry.auxiliaries) {
      for (std::size_t a = 0; a < geometry.auxiliaries.size(); ++a)
        curve.structure->setAuxiliaryParameter(int(a), geometry.auxiliaries[a]);
    }
    if (hasRange(*curve.structure))
      curve.structure->setRanges(geometry.ranges);
    if (!geometry.hasAnglesOf(curve.geometry))
      curve.structure->setRotation(geometry.rotation());
    curve.geometry = geometry;
  }

  void _compute(_Curve &curve) const
  {
    calcUnitVariogram(*curve.structure, _lags, curve.values.data());
    for (std::size_t k = 0; k < _lags.size(); ++k)
      curve.values[k] *= _nugget[k];
  }

  NgmLagVectors _lags;
  std::vector<double> _nugget;
  std::vector<_Curve> _curves;
};

NgmVModelOptimizable::NgmVModelOptimizable()
    : _curve(&NgmEVarioExp::VARIOGRAM), _variances(0, 0, false)
{
}

NgmVModelOptimizable::~NgmVModelOptimizable() = default;

void NgmVModelOptimizable::setVariogramExp(const NgmVariogramExpData &data, const NbbAEnum &curve)
{
  const QString key = curve.getKeyString();
  const bool isVario = NgmEVarioExp::existsKey(key) && data.hasVario(NgmEVarioExp::fromKey(key));
  const bool isCova = NgmECovaExp::existsKey(key) && data.hasCova(NgmECovaExp::fromKey(key));
  check(isVario || isCova, "Invalid variogram/covariance curve");
  _data = data;
  _hasData = true;
  _isCova = isCova;
  if (isCova)
    _curve = &NgmECovaExp::fromKey(key);
  else
    _curve = &NgmEVarioExp::fromKey(key);
}

void NgmVModelOptimizable::setInitialModel(const NgmVModelToBeOptimized &model)
{
  _initialModel = std::make_unique<NgmVModelToBeOptimized>(model);
}

const NgmVModelToBeOptimized &NgmVModelOptimizable::getInitialModel() const
{
  check(_initialModel != nullptr, "NgmVModelOptimizable::getInitialModel: no initial model");
  return *_initialModel;
}

void NgmVModelOptimizable::setVarianceCovarianceMatrix(const NgmMatrix &matrix)
{
  _variances = matrix;
  _hasVariances = true;
}

void NgmVModelOptimizable::setCovarianceTransformation(const NgmICovaTransformation &transformation)
{
  _transformation = transformation.clone();
}

const NgmICovaTransformation &NgmVModelOptimizable::getCovarianceTransformation() const
{
  check(_transformation != nullptr, "No cova transformation defined");
  return *_transformation;
}

void NgmVModelOptimizable::setNPairsExponent(double exponent)
{
  NgmFitWeights weighting;
  weighting.setExponent(exponent);
  _nPairsExponent = exponent;
}

void NgmVModelOptimizable::setNPairsMinimum(int minimum)
{
  NgmFitWeights weighting;
  weighting.setMinimumPairs(minimum);
  _nPairsMinimum = minimum;
}

bool NgmVModelOptimizable::fitSillsOnly() const
{
  return getInitialModel().getFitSillsOnly();
}

bool NgmVModelOptimizable::fitNugget() const
{
  return _workModel ? _workModel->getFitNugget() : getInitialModel().getFitNugget();
}

bool NgmVModelOptimizable::isIntrinsicConstraint() const
{
  return getInitialModel().isIntrinsicConstraint();
}

bool NgmVModelOptimizable::getSillCumulativeConstraint(QVector<double> &sills) const
{
  const bool isConstrained = getInitialModel().getSillCumulativeConstraint(sills);
  for (int i = 0; i < sills.size(); ++i) {
    if (NbbGlobal::isDefined(sills[i]) && _variances(i, i) > 0.)
      sills[i] /= _variances(i, i);
  }
  return isConstrained;
}

void NgmVModelOptimizable::_checkReady() const
{
  check(_current != nullptr, "NgmVModelOptimizable: not initialized");
}

bool NgmVModelOptimizable::_hasNuggetRank() const
{
  return _workModel->getFitNugget() || _workModel->hasNugget();
}

int NgmVModelOptimizable::getNStructuresToFit() const
{
  _checkReady();
  return _workModel->getNStructures() + (_hasNuggetRank() ? 1 : 0);
}

int NgmVModelOptimizable::getStructureOfRank(int rank) const
{
  check(rank >= 0 && rank < getNStructuresToFit(), "Invalid structure selected");
  return rank - (_hasNuggetRank() ? 1 : 0);
}

bool NgmVModelOptimizable::areSillsLocked(int rank) const
{
  const int structure = getStructureOfRank(rank);
  double value = 0.;
  return (structure == NUGGET && !_workModel->getFitNugget()) ||
         _workModel->isLocked(value, structure, ToBeOptimized::SILL, 0, 0);
}

NgmMatrix NgmVModelOptimizable::getSills(int rank) const
{
  return _current->matrix(getNVariables(), getStructureOfRank(rank) + 1);
}

void NgmVModelOptimizable::setSills(const QVector<NgmMatrix> &sills)
{
  check(sills.size() == getNStructuresToFit(), "Wrong size");
  NgmOptParamList params = _params;
  for (NgmOptParam &param : params) {
    const NgmOptParamId &id = param.getId();
    if (id.type != ToBeOptimized::SILL)
      continue;
    const NgmMatrix &matrix = sills[id.structure + (_hasNuggetRank() ? 1 : 0)];
    param.setValue(_fitToBounds(matrix(id.index1, id.index2), param.getBounds()));
  }
  acceptParams(params);
}

int NgmVModelOptimizable::combineVariables(int i, int j)
{
  return NgcMacros::TRI_ADDR(i, j);
}

void NgmVModelOptimizable::_makeMatrix(const double *values, double missing,
                                       NgmMatrix &matrix) const
{
  const int nPairs = getNVariables() * (getNVariables() + 1) / 2;
  if (matrix.getNRows() != nPairs || matrix.getNColumns() != _nColumns)
    matrix = NgmMatrix(nPairs, _nColumns, false);
  matrix.fill(missing);
  double *elements = matrix.elements();
  for (std::size_t k = 0; k < _lags.size(); ++k)
    elements[_pairs[k] + nPairs * _columns[k]] = values[k];
}

void NgmVModelOptimizable::getExperience(NgmMatrix &values) const
{
  _makeMatrix(getExperience().constData(), NbbGlobal::D_FFFF, values);
}

void NgmVModelOptimizable::getWeights(NgmMatrix &weights) const
{
  std::vector<double> values(_lags.size());
  const bool isSquared = _sillWeights == SillWeights::Squared;
  for (std::size_t k = 0; k < values.size(); ++k) {
    const double weight = getWeights()[int(k)];
    // Off the diagonal the sill fit counts twice.
    values[k] = isSquared ? weight * weight / (_variables1[k] == _variables2[k] ? 1. : 2.) : weight;
  }
  _makeMatrix(values.data(), 0., weights);
}

void NgmVModelOptimizable::getCova(int rank, NgmMatrix &values) const
{
  const int structure = getStructureOfRank(rank);
  _curves->update(_current->geometries);
  _makeMatrix(_curves->values(std::size_t(structure + 1)), 0., values);
}

NgmVModel NgmVModelOptimizable::_modelOf(const _State &state) const
{
  NgmVModel model(*_normedModel);
  model.setNuggetMatrix(state.matrix(getNVariables(), 0));
  for (int k = 0; k < model.getNStructures(); ++k) {
    const _Geometry &geometry = state.geometries[std::size_t(k)];
    const _Geometry before = _Geometry::of(model.getStructure(k));
    model.setCoregionalisationMatrix(k, state.matrix(getNVariables(), k + 1));
    for (std::size_t a = 0; a < geometry.auxiliaries.size(); ++a)
      model.setAuxiliaryParameter(k, int(a), geometry.auxiliaries[a]);
    if (hasRange(model.getStructure(k)) && !(geometry == before))
      model.setRanges(k, geometry.ranges);
    if (!geometry.hasAnglesOf(before))
      model.setRotation(k, geometry.rotation());
  }
  return model;
}

NgmVModel NgmVModelOptimizable::_applyParams(const NgmOptParamList &params) const
{
  _State state(*_current);
  _decode(params, state);
  return _modelOf(state);
}

NgmVModel NgmVModelOptimizable::getOptimizedModel() const
{
  _checkReady();
  _State state(*_current);
  for (std::size_t k = 0; k < state.geometries.size(); ++k) {
    const int structure = _rotationOwner >= 0 ? _rotationOwner : int(k);
    if (_workModel->getContext().getNDimensions() == 2 &&
        _params.contains({structure, ToBeOptimized::ROT, 0, 0}) &&
        _workModel->getBounds(structure, ToBeOptimized::ROT, 0, 0).isInfinite())
      state.geometries[k].angles[0] = inHalfTurn(state.geometries[k].angles[0]);
  }
  NgmVModel model = _modelOf(state);
  model.denormalizeSillsAndRanges(_maximumDistance, _variances);
  return model;
}

void NgmVModelOptimizable::checkConsistency() const
{
  checkUser(_hasData && _data.getNDirections() > 0,
            QObject::tr("Experimental variogram must be defined"));
  checkUser(_hasVariances, QObject::tr("The variance-covariance matrix must be defined"));
  checkUser(_variances.isSquared() && _variances.isSymmetrical(),
            QObject::tr("The variance-covariance matrix must be symmetrical"));
  checkUser(_data.getNVariables() == _variances.getNRows(),
            QObject::tr("Experimental variogram and variance-covariance matrix do not refer to the "
                        "same number of variables"));
  getInitialModel().checkConsistency();
  checkUser(getInitialModel().getNVariables() == _variances.getNRows(),
            QObject::tr("Initial variogram model and variance-covariance matrixdo not refer to the "
                        "same number of variables"));
  checkUser(NgmVariogramExpData::isColumnFittingEnabled(*_curve),
            QObject::tr("Fitting is not enabled for this type of curve"));
}

void NgmVModelOptimizable::_initPreProcess()
{
  initVModelOptimizable();
}

void NgmVModelOptimizable::initVModelOptimizable()
{
  _workModel = std::make_unique<NgmVModelToBeOptimized>(getInitialModel());
  _workModel->fixModel(_data);
  _workModel->fixSillConstraints();
  const double distance = _data.getMaximumDistanceExperimental();
  _maximumDistance = distance > 0. ? distance : 1.;
  _normedData = _data;
  _normedData.normalizeVariogram(_variances);
  _normedModel = std::make_unique<NgmVModel>(*_workModel);
  _normedModel->normalizeSillsAndRanges(_maximumDistance, _variances);
}

void NgmVModelOptimizable::_initExperience()
{
  _values.clear();
  _valueWeights.clear();
  _lags.clear();
  _variables1.clear();
  _variables2.clear();
  _pairs.clear();
  _columns.clear();
  _nColumns = 0;
  for (int dir = 0; dir < _normedData.getNDirections(); ++dir) {
    for (int i = 0; i < getNVariables(); ++i) {
      for (int j = _normedData.containsCross() ? 0 : i; j <= i; ++j)
        _initCurve(dir, i, j);
    }
    const int nLags = _normedData.getNLags(dir);
    _nColumns += _isCova ? 2 * nLags + 1 : nLags;
  }
  _setExperience(_values, _valueWeights);

  _smallestDistance = 1.;
  for (const NbgVector3D &lag : _lags) {
    if (!isNull(lag))
      _smallestDistance = std::min(_smallestDistance, lag.norm());
  }
}

void NgmVModelOptimizable::_initCurve(int dir, int i, int j)
{
  const QVector<double> distances = _normedData.getDistances(dir, _isCova, i, j);
  const QVector<qint64> counts = _normedData.getNumberOfPairs(dir, _isCova, i, j);
  const QVector<double> values =
      _isCova ? _normedData.getCovaColumn(dir, static_cast<NgmECovaExp::EValue>(_curve->getValue()),
                                          i, j)
              : _normedData.getVarioColumn(
                    dir, static_cast<NgmEVarioExp::EValue>(_curve->getValue()), i, j);
  const double atOrigin = _isCova ? values[values.size() / 2] : 0.;
  const NbgVector3D direction = _normedData.getDirectionVector(dir);

  const NgmFitWeights weighting{_nPairsExponent, _nPairsMinimum, _deprecatedWeighting};
  const std::vector<double> nPairs(counts.cbegin(), counts.cend());
  const std::vector<double> weights =
      weighting.normed(nPairs.size(), distances.constData(), nPairs.data());

  for (int lag = 0; lag < values.size(); ++lag) {
    if (!NbbGlobal::isDefined(values[lag]) || !NbbGlobal::isDefined(distances[lag]))
      continue;
    _values << (_isCova ? atOrigin - values[lag] : values[lag]);
    _valueWeights << (counts[lag] > 0 ? weights[std::size_t(lag)] : 0.);
    NbgVector3D h = direction;
    h *= distances[lag];
    _lags.push_back(h);
    _variables1.push_back(i);
    _variables2.push_back(j);
    _pairs.push_back(combineVariables(i, j));
    _columns.push_back(_nColumns + lag);
  }
}

double NgmVModelOptimizable::_fitToBounds(double value, const NbiIntervalData &bounds)
{
  return bounds.fit(value);
}

/// What a value in the units of the model is divided by.
double NgmVModelOptimizable::_unitOf(ToBeOptimized::ParamType type) const
{
  switch (type) {
    case ToBeOptimized::RANGE:
      return _maximumDistance;
    case ToBeOptimized::ROT:
      return 1. / DEGREE;
    case ToBeOptimized::SILL:
    case ToBeOptimized::AUX:
      return 1.;
    case ToBeOptimized::STRUCT:
      break;
  }
  throw NbeProgrammingError(
      QStringLiteral("NgmVModelOptimizable::_addParam: Unknown parameter type."));
}

NbiIntervalData NgmVModelOptimizable::_automaticBounds(int structure, ToBeOptimized::ParamType type,
                                                       int index1, int index2) const
{
  if (type == ToBeOptimized::SILL && index1 == index2)
    return NbiIntervalData(0., NbiIntervalData::Infinity);
  if (type == ToBeOptimized::RANGE)
    return NbiIntervalData(SMALLEST_RANGE * _smallestDistance, LARGEST_RANGE);
  if (type == ToBeOptimized::AUX)
    return _normedModel->getStructure(structure).getAuxiliaryBounds(index1);
  return NbiIntervalData::Infinite();
}

double NgmVModelOptimizable::_startingValue(int structure, ToBeOptimized::ParamType type,
                                            int index1, int index2) const
{
  if (type == ToBeOptimized::SILL)
    return structure == NUGGET
               ? _normedModel->getNugget(index1, index2)
               : _normedModel->getCoregionalisationMatrix(structure).getElement(index1, index2);
  const _Geometry geometry = _Geometry::of(_normedModel->getStructure(structure));
  if (type == ToBeOptimized::AUX)
    return geometry.auxiliaries[std::size_t(index1)];
  check(index1 >= 0 && index1 < 3, "NgmVModelOptimizable::_addParam: Unknown axis index.");
  return type == ToBeOptimized::RANGE ? geometry.ranges[index1] : geometry.angles[index1] * DEGREE;
}

void NgmVModelOptimizable::_addParam(int structure, ToBeOptimized::ParamType type, int index1,
                                     int index2, const QString &label)
{
  double value = 0.;
  if (_workModel->isLocked(value, structure, type, index1, index2))
    return;
  const double unit = _unitOf(type);
  NbiIntervalData bounds = _automaticBounds(structure, type, index1, index2);
  if (type != ToBeOptimized::SILL) {
    const NbiIntervalData user = _workModel->getBounds(structure, type, index1, index2);
    if (!user.isInfinite())
      bounds = scaled(user, 1. / unit);
    if (type == ToBeOptimized::RANGE && !(bounds.getLower() > POSITIVE_RANGE))
      bounds.setBounds(POSITIVE_RANGE, bounds.getUpper(), true, bounds.isUpperIncluded());
  }
  value = _startingValue(structure, type, index1, index2);
  double known = 0.;
  if (_workModel->isDefault(known, structure, type, index1, index2)) {
    if (!bounds.isIncluded(value) &&
        _workModel->getBounds(structure, type, index1, index2).isInfinite())
      bounds = NbiIntervalData(
          std::min(bounds.getLower(), value),
          bounds.hasUpper() ? std::max(bounds.getUpper(), value) : NbiIntervalData::Infinity);
    check(bounds.isIncluded(value),
          "NgmVModelOptimizable::_addParam: Invalid default value vs bounds");
  }
  _addToParams(
      NgmOptParam({structure, type, index1, index2}, _fitToBounds(value, bounds), bounds, label));
}

void NgmVModelOptimizable::_initParams()
{
  const auto addSills = [this](int structure, const QString &name) {
    for (int i = 0; i < getNVariables(); ++i) {
      for (int j = 0; j <= i; ++j)
        _addParam(structure, ToBeOptimized::SILL, i, j,
                  QStringLiteral("%1-Sill(%2,%3)")
                      .arg(name, QString::number(i + 1), QString::number(j + 1)));
    }
  };
  if (_workModel->getFitNugget())
    addSills(NUGGET, QObject::tr("Nugget"));

  _rotationOwner = -1;
  if (_workModel->getLockSameRot())
    _rotationOwner = _findRotationOwner();
  for (int k = 0; k < _workModel->getNStructures(); ++k) {
    addSills(k, QStringLiteral("S%1").arg(k + 1));
    if (!_workModel->getFitSillsOnly())
      _addStructureParams(k);
  }

  _current = std::make_unique<_State>(_State::of(*_normedModel));
  _decode(_params, *_current);
  _trial = std::make_unique<_State>(*_current);
  _curves = std::make_unique<_Curves>(*_normedModel, _lags);
}

/// A known rotation holds for all; else that of the first structure with a range.
int NgmVModelOptimizable::_findRotationOwner() const
{
  int first = -1;
  double value = 0.;
  for (int k = 0; k < _workModel->getNStructures(); ++k) {
    if (!hasRange(_workModel->getStructure(k)))
      continue;
    if (_workModel->isLocked(value, k, ToBeOptimized::ROT, 0, 0))
      return k;
    if (first < 0)
      first = k;
  }
  return first;
}

void NgmVModelOptimizable::_addStructureParams(int structure)
{
  const NgmAVStruct &type = _normedModel->getStructure(structure);
  const QString name = QStringLiteral("S%1").arg(structure + 1);
  for (int k = 0; k < type.getNAuxiliaryParameters(); ++k)
    _addParam(structure, ToBeOptimized::AUX, k, 0,
              QStringLiteral("%1-%2").arg(name, type.getAuxiliaryName(k)));
  if (!hasRange(type))
    return;
  const bool is3D = _workModel->getContext().getNDimensions() > 2;
  const auto addRange = [&](int axis) {
    _addParam(structure, ToBeOptimized::RANGE, axis, 0,
              QStringLiteral("%1-Range(%2)").arg(name).arg(axis + 1));
  };
  addRange(0);
  if (!_workModel->getAuthAniso())
    return;
  if (!_workModel->getLockIso2D())
    addRange(1);
  if (is3D && !_workModel->getLockNo3D())
    addRange(2);

  const bool isTurned = _workModel->getAuthRotation() && (is3D || !_workModel->getLockIso2D());
  if (!isTurned || (_rotationOwner >= 0 && _rotationOwner != structure))
    return;
  const int nAngles = is3D && !_workModel->getLockRot2D() ? 3 : 1;
  for (int angle = 0; angle < nAngles; ++angle)
    _addParam(structure, ToBeOptimized::ROT, angle, 0,
              QStringLiteral("%1-Rot(%2)").arg(name).arg(angle + 1));
}

void NgmVModelOptimizable::_decode(const NgmOptParamList &params, _State &state) const
{
  for (auto it = params.cbegin(); it != params.cend(); ++it) {
    const NgmOptParamId &id = it.key();
    const double value = it->getValue();
    if (id.type == ToBeOptimized::SILL) {
      state.sills[std::size_t(id.structure + 1)]
                 [std::size_t(combineVariables(id.index1, id.index2))] = value;
      continue;
    }
    _Geometry &geometry = state.geometries[std::size_t(id.structure)];
    if (id.type == ToBeOptimized::RANGE)
      geometry.ranges[id.index1] = value;
    else if (id.type == ToBeOptimized::ROT)
      geometry.angles[id.index1] = value / DEGREE;
    else
      geometry.auxiliaries[std::size_t(id.index1)] = value;
  }
  if (_workModel->getFitSillsOnly())
    return;
  for (std::size_t k = 0; k < state.geometries.size(); ++k)
    _tieGeometry(int(k), state);
}

/// Ranges and angles that follow others.
void NgmVModelOptimizable::_tieGeometry(int structure, _State &state) const
{
  _Geometry &geometry = state.geometries[std::size_t(structure)];
  double value = 0.;
  for (int axis = 1; axis < 3; ++axis) {
    const bool follows = !_workModel->getAuthAniso() || (axis == 1 && _workModel->getLockIso2D());
    if (follows && !_workModel->isLocked(value, structure, ToBeOptimized::RANGE, axis, 0))
      geometry.ranges[axis] = geometry.ranges[0];
  }
  if (_rotationOwner >= 0)
    geometry.angles = state.geometries[std::size_t(_rotationOwner)].angles;
}

void NgmVModelOptimizable::_updateOptimizable(const NgmOptParamList &params)
{
  _decode(params, *_current);
  NgmAOptimizable_impl<NgmVModel>::_updateOptimizable(params);
}

void NgmVModelOptimizable::decodeParam(const NgmOptParam &param, int &structure, int &type,
                                       int &index1, int &index2) const
{
  const NgmOptParamId &id = param.getId();
  structure = id.structure;
  type = int(id.type);
  index1 = id.index1;
  index2 = id.index2;
}

QVector<double> NgmVModelOptimizable::evaluateFunction(const NgmOptParamList &params, bool verbose)
{
  _checkReady();
  const std::size_t n = _lags.size();
  check(std::size_t(getExperience().size()) == n && _pairs.size() == n, "Wrong size");
  _decode(params, *_trial);
  if (verbose)
    NbbDebug::print(QStringLiteral("NgmVModelOptimizable::evaluateFunction\n") +
                    _modelOf(*_trial).summary(true, true, 6).join(QLatin1Char('\n')));

  _curves->update(_trial->geometries);
  QVector<double> values(int(n), 0.);
  double *out = values.data();
  for (std::size_t index = 0; index < _trial->sills.size(); ++index) {
    const double *sills = _trial->sills[index].data();
    const double *curve = _curves->values(index);
    for (std::size_t k = 0; k < n; ++k)
      out[k] += sills[_pairs[k]] * curve[k];
  }
  if (_transformation)
    _transform(out);
  if (!std::all_of(values.cbegin(), values.cend(), [](double v) { return std::isfinite(v); }))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModelOptimizable::evaluateFunction: A non value is collected"));
  return values;
}

/// Variograms of the model become those of the transformed covariances.
void NgmVModelOptimizable::_transform(double *values) const
{
  for (std::size_t k = 0; k < _lags.size(); ++k) {
    const int i = _variables1[k];
    const int j = _variables2[k];
    const double unit = std::sqrt(_variances(i, i) * _variances(j, j));
    double origin = 0.;
    for (const std::vector<double> &sills : _trial->sills)
      origin += sills[std::size_t(_pairs[k])];
    values[k] = (_transformation->transformCova(i, j, unit * origin) -
                 _transformation->transformCova(i, j, unit * (origin - values[k]))) /
                unit;
  }
}

QString NgmVModelOptimizable::endMessage(bool verbose) const
{
  return verbose ? getOptimizedModel().summary(true, true, 6).join(QLatin1Char('\n')) : QString();
}

bool NgmVModelOptimizable::reduceModel(bool verbose)
{
  _checkReady();
  QStringList texts;
  const bool isReduced = _reduceModel(texts);
  if (verbose)
    NbbDebug::print(texts.join(QLatin1Char('\n')));
  return isReduced;
}

/// Largest share in percent that a structure has of the cumulative sill of a variable.
double NgmVModelOptimizable::_penalty(const NgmVModel &model, int structure) const
{
  double largest = 0.;
  for (int v = 0; v < getNVariables(); ++v) {
    double total = model.getNugget(v, v);
    for (int k = 0; k < model.getNStructures(); ++k)
      total += model.getSill(k, v, 1.);
    const double sill =
        structure == NUGGET ? model.getNugget(v, v) : model.getSill(structure, v, 1.);
    if (total > 0.)
      largest = std::max(largest, 100. * sill / total);
  }
  return largest;
}

bool NgmVModelOptimizable::_reduceModel(QStringList &texts)
{
  if (!_workModel->getAuthCompress()) {
    texts << QObject::tr("Compression not authorized. No structure is discarded.");
    return false;
  }
  NgmVModel model = _modelOf(*_current);
  texts << QObject::tr("## Model reduction tentative...")
        << QObject::tr("Cumulative sills by variables:");
  for (int v = 0; v < getNVariables(); ++v) {
    double total = model.getNugget(v, v);
    for (int k = 0; k < model.getNStructures(); ++k)
      total += model.getSill(k, v, 1.);
    texts << QObject::tr("- v%1: %2").arg(v + 1).arg(total * _variances(v, v));
  }

  QList<int> discarded;
  const bool losesNugget = _findDiscarded(model, discarded, texts);
  if (discarded.isEmpty() && !losesNugget) {
    texts << QObject::tr("No structure is discarded.");
    return false;
  }
  std::sort(discarded.begin(), discarded.end());
  for (int k = discarded.size() - 1; k >= 0; --k) {
    model.removeStructure(discarded[k]);
    _workModel->removeStructure(discarded[k]);
  }
  if (losesNugget) {
    model.removeNugget();
    _workModel->removeNugget();
  }
  *_normedModel = model;
  _params.clear();
  _initParams();
  NgmAOptimizable_impl<NgmVModel>::_updateOptimizable(_params);
  return true;
}

/// The structures to discard; true when the nugget is to be discarded too.
bool NgmVModelOptimizable::_findDiscarded(const NgmVModel &model, QList<int> &discarded,
                                          QStringList &texts) const
{
  double value = 0.;
  QVector<double> penalties;
  QList<int> candidates;
  for (int k = 0; k < model.getNStructures(); ++k) {
    const QString name = model.getStructureLabel(k);
    penalties << _penalty(model, k);
    texts << QObject::tr("Structure #%1 (%2)").arg(QString::number(k + 1), name)
          << QObject::tr("%1 has a penalty of %2%").arg(name, QString::number(penalties[k]));
    if (!_workModel->isLocked(value, k, ToBeOptimized::SILL, 0, 0) &&
        !_workModel->isLocked(value, k, ToBeOptimized::STRUCT, 0, 0))
      candidates << k;
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [&penalties](int a, int b) { return penalties[a] < penalties[b]; });
  const int maximum = _workModel->getNbMaxStruct();
  for (int k : qAsConst(candidates)) {
    const int remaining = model.getNStructures() - discarded.size();
    const bool isNegligible = penalties[k] < _workModel->getTolSigma();
    const bool isTooMany = maximum >= 0 && remaining > maximum;
    if (remaining <= _workModel->getNbMinStruct() || (!isNegligible && !isTooMany))
      continue;
    discarded << k;
    texts << QObject::tr("=> %1 is discarded.").arg(model.getStructureLabel(k));
  }
  NgmMatrix known;
  if (!_workModel->getFitNugget())
    return false;
  const double penalty = _penalty(model, NUGGET);
  texts << QObject::tr("Nugget effect has a penalty of %1%").arg(penalty);
  if (_workModel->hasKnownNugget(known) || penalty >= _workModel->getTolNugget() ||
      discarded.size() == model.getNStructures())
    return false;
  texts << QObject::tr("=> Nugget effect is discarded.");
  return true;
}
