#include "geos/vmodel/NgmVModel.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmAVStructMatern.h"
#include "geos/vmodel/NgmVStructFactory.h"
#include "vmodel/private/NgmBulkCovas.h"
#include "vmodel/private/NgmVModelCovaCache.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double ORIGIN_TOLERANCE = 1e-10;
constexpr double NULL_SILL = 1e-30;
constexpr double EIGENVALUE_FLOOR = 1e-15;

bool isNearOrigin(const NbgVector3D &h)
{
  return std::abs(h.x()) < ORIGIN_TOLERANCE && std::abs(h.y()) < ORIGIN_TOLERANCE &&
         std::abs(h.z()) < ORIGIN_TOLERANCE;
}

NgmMatrix symmetrical(const NgmMatrix &matrix)
{
  NgmMatrix copy(matrix);
  copy.setMustBeSymmetrical(true);
  return copy;
}

/// Beyond what rounding makes of a zero one: perfectly correlated variables are admitted.
bool hasNegativeEigenvalue(const NgmMatrix &matrix)
{
  NgmMatrix values(false);
  NgmMatrix vectors(false);
  const double largest = matrix.eigenValues(values, vectors, false, false, 1);
  const double rounding = matrix.getNRows() * std::numeric_limits<double>::epsilon();
  return matrix.getNRows() > 0 && values.getElement(0, 0) < -rounding * std::abs(largest);
}

/// Multiplies the elements off the diagonal.
void scaleOffDiagonal(NgmMatrix &matrix, double factor)
{
  for (int j = 0; j < matrix.getNColumns(); ++j)
    for (int i = 0; i < j; ++i)
      matrix.setElement(i, j, factor * matrix.getElement(i, j));
}

void repair(NgmMatrix &matrix)
{
  if (!matrix.isPositiveDefinite(false, false))
    matrix.makePositiveDefinite(false, false, EIGENVALUE_FLOOR);
}

QString badSillRank()
{
  return QStringLiteral("Bad rank detected when setting the sill for a structure");
}

}  // namespace

void NgmVModelCovaCacheDeleter::operator()(NgmVModelCovaCache *cache) const
{
  delete cache;
}

NgmVModel::NgmVModel(int nVariables)
    : _nVariables(_checkedNumber(nVariables, "NgmVModel::NgmVModel: invalid number of variables.")),
      _nugget(nVariables, nVariables, true),
      _c00(nVariables, nVariables, true)
{
}

NgmVModel::NgmVModel(const NgmVModel &other)
    : NbbASerializable(other),
      NbbIDebuggable(other),
      _context(other._context),
      _nVariables(other._nVariables),
      _effectiveIrfDegree(other._effectiveIrfDegree),
      _hasRotation(other._hasRotation),
      _hasGlobalRotation(other._hasGlobalRotation),
      _globalRotation(other._globalRotation),
      _nugget(other._nugget),
      _sills(other._sills),
      _c00(other._nVariables, other._nVariables, true),
      _tapering(other._tapering ? std::make_unique<NgmTapering>(*other._tapering) : nullptr)
{
  for (const auto &structure : other._structures)
    _structures.push_back(NgmVStructFactory::createVStruct(*structure));
}

NgmVModel &NgmVModel::operator=(const NgmVModel &other)
{
  if (this != &other) {
    NgmVModel copy(other);
    _take(copy);
    _tapering = std::move(copy._tapering);
  }
  return *this;
}

NgmVModel::~NgmVModel() = default;

void NgmVModel::setNVariables(int nVariables)
{
  if (nVariables == _nVariables)
    return;
  NgmVModel empty(
      _checkedNumber(nVariables, "NgmVModel::setNVariables: invalid number of variables"));
  empty._context = _context;
  _take(empty);
}

bool NgmVModel::isValid() const
{
  return _nVariables >= 1 && (!_structures.empty() || hasNugget());
}

void NgmVModel::setContext(const NgmModelContext &context)
{
  _invalidateC00();
  for (const auto &structure : _structures)
    structure->setContext(context);
  _context = context;
}

void NgmVModel::setContextNDim(int nDimensions)
{
  NgmModelContext context(_context);
  context.setNDimensions(nDimensions);
  setContext(context);
}

void NgmVModel::setContextIrfDegree(int maxIrfDegree)
{
  NgmModelContext context(_context);
  context.setMaxIrfDegree(maxIrfDegree);
  setContext(context);
}

void NgmVModel::setContextFieldSize(double fieldSize)
{
  NgmModelContext context(_context);
  context.setFieldSize(fieldSize);
  setContext(context);
}

int NgmVModel::addStructure(const QString &label, double sill)
{
  if (!(sill > 0.))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::addStructure: sill must be a positive value"));
  NgmMatrix sills(_nVariables, _nVariables, true);
  for (int i = 0; i < _nVariables; ++i)
    sills.setElement(i, i, sill);
  return _addStructureOfType(label, sills);
}

int NgmVModel::addStructure(const QString &label, const NgmMatrix &sills)
{
  return _addStructureOfType(label, sills);
}

int NgmVModel::addStructure(const NgmAVStruct &structure, const NgmMatrix &sills)
{
  return _addStructure(structure, sills);
}

void NgmVModel::replaceStructureType(int index, const QString &label)
{
  if (!_isStructure(index))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::replaceStructureType: Invalid structure index"));
  std::unique_ptr<NgmAVStruct> structure =
      NgmVStructFactory::createTemplateVStruct(NgmEVStruct::fromLabel(label, NgmEVStruct::UNKNOWN));
  if (!structure)
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::replaceStructureType: Invalid structure type"));
  const NgmAVStruct &replaced = getStructure(index);
  structure->setContext(_context);
  structure->setRanges(replaced.getPracticalRanges());
  structure->setRotation(replaced.getRotation());
  _structures[std::size_t(index)] = std::move(structure);
  _validateModel();
}

void NgmVModel::removeStructure(int index)
{
  if (!_isStructure(index))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::removeStructure: ") +
        QStringLiteral("Bad rank (%1) detected when removing a structure").arg(index));
  _structures.erase(_structures.begin() + index);
  _sills.erase(_sills.begin() + index);
  _validateModel();
}

void NgmVModel::removeNugget()
{
  setNuggetMatrix(NgmMatrix(_nVariables, _nVariables, true));
}

void NgmVModel::removeNullStructures()
{
  for (int k = getNStructures() - 1; k >= 0; --k)
    if (getCoregionalisationMatrix(k).isNull())
      removeStructure(k);
}

const NgmAVStruct &NgmVModel::getStructure(int index) const
{
  if (!_isStructure(index))
    NBE_FAIL_AT(QStringLiteral("geos/vmodel/NgmVModel"),
                QStringLiteral("argument invalid : %1").arg(index));
  return *_structures[std::size_t(index)];
}

QString NgmVModel::getStructureLabel(int index) const
{
  if (!_isStructure(index))
    throw NbeProgrammingError(QStringLiteral("NgmVModel::getStructureLabel: argument invalid :"));
  return getStructure(index).getType().getLabel();
}

bool NgmVModel::hasNugget() const
{
  return !_nugget.isNull();
}

void NgmVModel::setNugget(int i, int j, double value)
{
  if (!_isVariable(i) || !_isVariable(j))
    throw NbeProgrammingError(QStringLiteral("Invalid variable rank when setting nugget"));
  _invalidateC00();
  _nugget.setElement(i, j, value);
}

void NgmVModel::setNuggetMatrix(const NgmMatrix &nugget)
{
  if (nugget.getNRows() != _nVariables || nugget.getNColumns() != _nVariables)
    throw NbeProgrammingError(QStringLiteral("NgmVModel::setNuggetMatrix: matrix has wrong size"));
  _invalidateC00();
  _nugget = nugget;
}

bool NgmVModel::isPureNugget(int variable) const
{
  const auto hasSill = [&](const NgmMatrix &sills) {
    return std::abs(sills.getElement(variable, variable)) > sills.getPrecision();
  };
  return hasSill(_nugget) && std::none_of(_sills.begin(), _sills.end(), hasSill);
}

bool NgmVModel::hasPureNuggetVariable() const
{
  for (int i = 0; i < _nVariables; ++i)
    if (isPureNugget(i))
      return true;
  return false;
}

const NgmMatrix &NgmVModel::getCoregionalisationMatrix(int index) const
{
  if (!_isStructure(index))
    NBE_FAIL_AT(QStringLiteral("geos/vmodel/NgmVModel"),
                QStringLiteral("argument invalid : %1").arg(index));
  return _sills[std::size_t(index)];
}

void NgmVModel::setCoregionalisationMatrix(int index, const NgmMatrix &sills)
{
  if (!_isStructure(index))
    throw NbeProgrammingError(QStringLiteral("NgmVModel::setCoregionalisationMatrix: ") +
                              badSillRank());
  if (sills.getNRows() != _nVariables || sills.getNColumns() != _nVariables)
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::setCoregionalisationMatrix: matrix has wrong size"));
  _invalidateC00();
  _sills[std::size_t(index)] = sills;
}

void NgmVModel::setCoregionalisationMatElem(int index, int i, int j, double value)
{
  if (!_isStructure(index))
    throw NbeProgrammingError(QStringLiteral("NgmVModel::setCoregionalisationMatElem: ") +
                              badSillRank());
  if (!_isVariable(i) || !_isVariable(j))
    throw NbeProgrammingError(QStringLiteral("Invalid variable rank when setting sill"));
  _invalidateC00();
  _sills[std::size_t(index)].setElement(i, j, value);
}

double NgmVModel::getSill(int index, int variable, double h) const
{
  if (!_isStructure(index))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::getSill: argument invalid :%1").arg(index));
  const NgmAVStruct &structure = getStructure(index);
  const double sill = _sills[std::size_t(index)].getElement(variable, variable);
  if (structure.isScaleFactorSignificant() || !NbbGlobal::isDefined(h))
    return sill;
  if (h <= 1e-30)
    throw NbeProgrammingError(QStringLiteral("NgmVModel::getSill: invalid context"));
  const double dist[2] = {0., h};
  double rho[2];
  structure.calcCovaFromDist(2, dist, rho);
  return (rho[0] - rho[1]) * sill;
}

NgmMatrix NgmVModel::getCumulativeSill(bool withNugget, const NbgVector3D &h) const
{
  NgmMatrix sills(_nVariables, 1, false);
  const auto add = [&](double factor, const NgmMatrix &matrix) {
    for (int v = 0; v < _nVariables; ++v)
      sills.setElement(v, 0, sills(v, 0) + factor * matrix(v, v));
  };
  if (withNugget && hasNugget())
    add(1., _nugget);
  for (int k = 0; k < getNStructures(); ++k)
    if (!getCoregionalisationMatrix(k).isNull())
      add(1. - calcElementaryStructure(h, k), getCoregionalisationMatrix(k));
  return sills;
}

const NgmMatrix &NgmVModel::getC00Matrix() const
{
  _updateC00();
  return _c00;
}

double NgmVModel::getC0IJ(int i, int j) const
{
  _checkVariables(i, j);
  return getC00Matrix().getElement(i, j);
}

void NgmVModel::setRotation(int index, const NbgRotation &rotation)
{
  _changeStructure(index, "Bad rank detected when setting the rotation for a structure")
      .setRotation(rotation);
  _validateModel();
}

void NgmVModel::setGlobalRotation(const NbgRotation &rotation)
{
  for (const auto &structure : _structures)
    structure->setRotation(rotation);
  _validateModel();
}

void NgmVModel::setAnisotropy(int index, const NbgVector3D &anisotropy)
{
  NgmAVStruct &structure =
      _changeStructure(index, "Bad rank detected when setting the anisotropies for a structure");
  bool allNull = true;
  for (int axis = 0; axis < _context.getNDimensions(); ++axis)
    allNull = allNull && anisotropy[axis] == 0.;
  if (!anisotropy.isDefined() || anisotropy.minimum() < 0. || allNull)
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::setAnisotropy: Invalid anisotropy vector"));
  structure._setAnisotropy(anisotropy);
}

void NgmVModel::setRanges(int index, const NbgVector3D &practicalRanges)
{
  getStructure(index);
  _invalidateC00();
  _structures[std::size_t(index)]->setRanges(practicalRanges);
}

void NgmVModel::setRange(int index, int axis, double practicalRange)
{
  NgmAVStruct &structure =
      _changeStructure(index, "Bad rank detected when setting the ranges for a structure");
  if (axis < 0 || axis > 2)
    throw NbeProgrammingError(
        QStringLiteral("Bad direction index detected when setting the ranges for a direction"));
  NbgVector3D ranges = structure.getPracticalRanges();
  ranges[axis] = practicalRange;
  structure.setRanges(ranges);
}

void NgmVModel::setRangeIsotropic(int index, double practicalRange)
{
  _changeStructure(index, "Bad rank detected when setting the isotropic range for a structure")
      .setRangeIsotropic(practicalRange);
}

void NgmVModel::updateToIsotropic(int index)
{
  getStructure(index);
  _invalidateC00();
  _structures[std::size_t(index)]->updateToIsotropic();
}

void NgmVModel::updateScaleFactor(int index, double practicalRange)
{
  _setScaleFactor(index, practicalRange);
}

void NgmVModel::setAuxiliaryParameter(int index, int parameter, double value)
{
  _changeStructure(index, "Bad rank detected when setting the auxiliary parameter for a structure")
      .setAuxiliaryParameter(parameter, value);
}

const NbgRotation &NgmVModel::getMajorRotation() const
{
  const NbgRotation *rotation = &_globalRotation;
  double largest = 0.;
  for (int k = 0; k < getNStructures(); ++k) {
    const double sill = getSill(k, 0, NbbGlobal::D_FFFF);
    if (sill > largest) {
      largest = sill;
      rotation = &getStructure(k).getRotation();
    }
  }
  return *rotation;
}

NbgVector3D NgmVModel::getGlobalRange() const
{
  if (!_hasGlobalRotation)
    NBE_FAIL(QStringLiteral("Can't be used with mixed rotations"));
  NbgVector3D range;
  for (const auto &structure : _structures)
    range = range.maximum(structure->getPracticalRanges());
  return range;
}

bool NgmVModel::isIsotropic() const
{
  return std::all_of(_structures.begin(), _structures.end(),
                     [](const auto &structure) { return structure->isIsotropic(); });
}

bool NgmVModel::isIsotropic2D() const
{
  return std::all_of(_structures.begin(), _structures.end(),
                     [](const auto &structure) { return structure->isIsotropic2D(); });
}

bool NgmVModel::isPureMatern(bool acceptNugget) const
{
  const auto isMatern = [](const auto &structure) {
    return dynamic_cast<const NgmAVStructMatern *>(structure.get()) != nullptr;
  };
  return (acceptNugget || !hasNugget()) &&
         std::all_of(_structures.begin(), _structures.end(), isMatern);
}

void NgmVModel::calcCova(const NbgVector3D &h, NgmMatrix &covas) const
{
  const NgmMatrix *c00 = h == NbgVector3D::Null ? &getC00Matrix() : nullptr;
  if (c00) {
    for (int i = 0; i < _nVariables; ++i)
      for (int j = 0; j <= i; ++j)
        covas.setElement(i, j, c00->getElement(i, j));
    return;
  }
  covas.fill(0.);
  NbgVector3D reduced = h;
  for (int k = 0; k < getNStructures(); ++k) {
    const NgmAVStruct &structure = getStructure(k);
    // An isotropic structure takes the vector that the last anisotropic one left.
    if (!structure.isIsotropic())
      reduced = NgmBulkCovas::reducedVector(*this, k, h);
    const double rho = structure.calcCova(reduced);
    const NgmMatrix &sills = _sills[std::size_t(k)];
    for (int i = 0; i < _nVariables; ++i)
      for (int j = 0; j <= i; ++j)
        covas.setElement(i, j, covas.getElement(i, j) + rho * sills.getElement(i, j));
  }
}

double NgmVModel::calcCovaIJ(int i, int j, const NbgVector3D &h) const
{
  if (isNearOrigin(h))
    return getC0IJ(i, j);
  double cova = 0.;
  for (int k = 0; k < getNStructures(); ++k) {
    const double sill = _sills[std::size_t(k)].getElement(i, j);
    if (std::abs(sill) > NULL_SILL)
      cova += sill * calcElementaryStructure(h, k);
  }
  return cova;
}

double NgmVModel::calcVarioIJ(int i, int j, const NbgVector3D &h) const
{
  return getC0IJ(i, j) - calcCovaIJ(i, j, h);
}

double NgmVModel::calcElementaryStructure(const NbgVector3D &h, int index) const
{
  return getStructure(index).calcCova(NgmBulkCovas::reducedVector(*this, index, h));
}

void NgmVModel::calcAllCovas(const NbdVariableDouble &x, const NbdVariableDouble &y,
                             const NbdVariableDouble &z, NgmMatrix &covas,
                             NgmVModelCovaCache *cache, MatrixPart part) const
{
  calcAllCovas(int(x.getNValues()), x.getArrayConst(), y.getArrayConst(), z.getArrayConst(), covas,
               cache, part);
}

void NgmVModel::calcAllCovas(int n, const double *x, const double *y, const double *z,
                             NgmMatrix &covas, NgmVModelCovaCache *cache, MatrixPart part) const
{
  const qint64 size = qint64(n) * _nVariables;
  if (covas.getNRows() < size || covas.getNColumns() < size)
    NBE_FAIL(QStringLiteral("wrong matrix size"));
  const NgmVModelCovaCachePtr own = cache ? nullptr : getCovaCache();
  NgmBulkCovas::allCovas(*this, n, {x, y, z}, covas, cache ? *cache : *own, part);
}

void NgmVModel::calcCovasPointSet(const NgmTarget &target, const NbdVariableDouble &x,
                                  const NbdVariableDouble &y, const NbdVariableDouble &z,
                                  NgmMatrix &covas, NgmVModelCovaCache *cache) const
{
  calcCovasPointSet(target.getCenter(), int(x.getNValues()), x.getArrayConst(), y.getArrayConst(),
                    z.getArrayConst(), covas, cache);
}

void NgmVModel::calcCovasPointSet(const NbgVector3D &target, int n, const double *x,
                                  const double *y, const double *z, NgmMatrix &covas,
                                  NgmVModelCovaCache *cache) const
{
  if (covas.getNRows() < qint64(n) * _nVariables)
    NBE_FAIL(QStringLiteral("wrong number of rows"));
  if (covas.getNColumns() != _nVariables)
    NBE_FAIL(QStringLiteral("wrong number of columns"));
  const NgmVModelCovaCachePtr own = cache ? nullptr : getCovaCache();
  NgmBulkCovas::pointSet(*this, target, n, {x, y, z}, covas, cache ? *cache : *own);
}

void NgmVModel::calcCovasBlockSet(const NgmTarget &target, const NbdVariableDouble &x,
                                  const NbdVariableDouble &y, const NbdVariableDouble &z,
                                  NgmMatrix &covas, NgmVModelCovaCache *cache) const
{
  const NgmVModelCovaCachePtr own = cache ? nullptr : getCovaCache();
  NgmVModelCovaCache &used = cache ? *cache : *own;
  target.getDiscretizationPoints(used.blockPoints);
  calcCovasBlockSet(used.blockPoints.size(), used.blockPoints.constData(), int(x.getNValues()),
                    x.getArrayConst(), y.getArrayConst(), z.getArrayConst(), covas, &used);
}

void NgmVModel::calcCovasBlockSet(int nPoints, const NbgVector3D *points, int n, const double *x,
                                  const double *y, const double *z, NgmMatrix &covas,
                                  NgmVModelCovaCache *cache) const
{
  if (covas.getNRows() < qint64(n) * _nVariables)
    NBE_FAIL(QStringLiteral("wrong number of rows"));
  if (covas.getNColumns() != _nVariables)
    NBE_FAIL(QStringLiteral("wrong number of columns"));
  const NgmVModelCovaCachePtr own = cache ? nullptr : getCovaCache();
  NgmBulkCovas::blockSet(*this, nPoints, points, n, {x, y, z}, covas, cache ? *cache : *own);
}

NgmVModelCovaCachePtr NgmVModel::getCovaCache()
{
  return NgmVModelCovaCachePtr(new NgmVModelCovaCache);
}

void NgmVModel::setTapering(const NbgVector3D &ranges, NgmTapering::TaperingType type)
{
  auto tapering = std::make_unique<NgmTapering>();
  tapering->setNDim(_context.getNDimensions());
  tapering->setRanges(ranges);
  tapering->setType(type);
  _tapering = std::move(tapering);
}

double NgmVModel::calcTapering(const NbgVector3D &h) const
{
  if (!_tapering)
    return 1.;
  const bool isRotated = _hasRotation && _hasGlobalRotation;
  return _tapering->calcTapering(isRotated ? _globalRotation.worldToLocal(h) : h);
}

double NgmVModel::calcTaperedCovaIJ(int i, int j, const NbgVector3D &h) const
{
  return isNearOrigin(h) ? getC0IJ(i, j) : calcCovaIJ(i, j, h) * calcTapering(h);
}

bool NgmVModel::makeAuthorized()
{
  _invalidateC00();
  if (!_nugget.isNull(NULL_SILL))
    repair(_nugget);
  for (NgmMatrix &sills : _sills)
    repair(sills);

  if (!_sumOfSills().isPositiveDefinite(true, false)) {
    for (NgmMatrix &sills : _sills)
      scaleOffDiagonal(sills, 0.999999);
    if (!_sumOfSills().isPositiveDefinite(true, false))
      NBE_FAIL(QStringLiteral(
          "The variance-covariance matrix at zero distance is not strictly definite-positive"));
  }

  for (int axis = 0; axis < _context.getNDimensions() && !_structures.empty(); ++axis) {
    // The first structure decides: anisotropic and without variation along the axis, it fails.
    if (!_isDirectionCovered(*_structures.front(), axis))
      NBE_FAIL(QStringLiteral("Model is not correctly defined as a direction is not covered"));
  }
  return true;
}

int NgmVModel::_addStructure(const NgmAVStruct &structure, const NgmMatrix &sills)
{
  if (sills.getNColumns() != _nVariables || sills.getNRows() != _nVariables)
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::addStructure: sills matrix has wrong size."));
  if (hasNegativeEigenvalue(sills))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::_addStructure: sills matrix must be positive definite"));
  _appendStructure(structure, sills);
  _validateModel();
  return getNStructures() - 1;
}

void NgmVModel::_setScaleFactor(int index, double practicalRange)
{
  _changeStructure(index, "Bad rank detected when setting the range for a structure")
      ._setScaleFactor(practicalRange);
}

void NgmVModel::_validateModel()
{
  _hasRotation = false;
  _hasGlobalRotation = true;
  _globalRotation = _structures.empty() ? NbgRotation() : _structures.front()->getRotation();
  for (const auto &structure : _structures) {
    const NbgRotation &rotation = structure->getRotation();
    _hasRotation = _hasRotation || !rotation.isIdentity();
    _hasGlobalRotation = _hasGlobalRotation && rotation == _globalRotation;
  }
  _invalidateC00();
  _updateC00();
  _updateEffectiveIrfDegree();
}

int NgmVModel::_checkedNumber(int nVariables, const char *message)
{
  if (nVariables < 0 || nVariables > MAXIMUM_VARIABLES)
    throw NbeProgrammingError(QString::fromLatin1(message));
  return nVariables;
}

void NgmVModel::_checkVariables(int i, int j) const
{
  if (!_isVariable(i) || !_isVariable(j))
    throw NbeProgrammingError(QStringLiteral("NgmVModel::getC0IJ: Invalid arguments"));
}

NgmAVStruct &NgmVModel::_changeStructure(int index, const char *message)
{
  if (!_isStructure(index))
    throw NbeProgrammingError(QString::fromLatin1(message));
  _invalidateC00();
  return *_structures[std::size_t(index)];
}

int NgmVModel::_addStructureOfType(const QString &label, const NgmMatrix &sills)
{
  const std::unique_ptr<NgmAVStruct> structure =
      NgmVStructFactory::createTemplateVStruct(NgmEVStruct::fromLabel(label));
  if (!structure)
    throw NbeProgrammingError(
        QStringLiteral("Invalid structure type when adding a new structure to the model"));
  return _addStructure(*structure, sills);
}

void NgmVModel::_appendStructure(const NgmAVStruct &structure, const NgmMatrix &sills)
{
  std::unique_ptr<NgmAVStruct> copy = NgmVStructFactory::createVStruct(structure);
  copy->setContext(_context);
  _sills.push_back(symmetrical(sills));
  _structures.push_back(std::move(copy));
}

void NgmVModel::_updateEffectiveIrfDegree()
{
  _effectiveIrfDegree = -1;
  for (const auto &structure : _structures)
    _effectiveIrfDegree = std::max(_effectiveIrfDegree, structure->getIRFDegree());
}

void NgmVModel::_invalidateC00()
{
  const std::lock_guard<std::mutex> lock(_c00Mutex);
  _c00Valid.store(false, std::memory_order_release);
}

void NgmVModel::_updateC00() const
{
  if (_c00Valid.load(std::memory_order_acquire))
    return;
  const std::lock_guard<std::mutex> lock(_c00Mutex);
  if (_c00Valid.load(std::memory_order_relaxed))
    return;
  // Into a matrix of its own: _c00 may share its elements with a copy that a reader still holds.
  NgmMatrix c00(_nVariables, _nVariables, true);
  for (int i = 0; i < _nVariables; ++i)
    for (int j = 0; j <= i; ++j) {
      double cova = _nugget.getElement(i, j);
      for (std::size_t k = 0; k < _structures.size(); ++k)
        cova += _sills[k].getElement(i, j) * _structures[k]->calcCova(NbgVector3D::Null);
      c00.setElement(i, j, cova);
    }
  _c00 = c00;
  _c00Valid.store(true, std::memory_order_release);
}

NgmMatrix NgmVModel::_sumOfSills() const
{
  NgmMatrix sum(_nVariables, _nVariables, true);
  if (hasNugget())
    sum.add(_nugget);
  for (const NgmMatrix &sills : _sills)
    sum.add(sills);
  return sum;
}

bool NgmVModel::_isDirectionCovered(const NgmAVStruct &structure, int axis) const
{
  if (structure.isIsotropic())
    return true;
  const NbgRotation &rotation = _hasGlobalRotation ? _globalRotation : structure.getRotation();
  for (int m = 0; m < _context.getNDimensions(); ++m) {
    NbgVector3D unit;
    unit[m] = 1.;
    if (_hasRotation)
      unit = rotation.worldToLocal(unit);
    if (unit.componentsProduct(structure.getAnisotropy())[axis] != 0.)
      return true;
  }
  return false;
}

void NgmVModel::_take(NgmVModel &other)
{
  _context = other._context;
  _nVariables = other._nVariables;
  _effectiveIrfDegree = other._effectiveIrfDegree;
  _hasRotation = other._hasRotation;
  _hasGlobalRotation = other._hasGlobalRotation;
  _globalRotation = other._globalRotation;
  _nugget = other._nugget;
  _structures = std::move(other._structures);
  _sills = std::move(other._sills);
  _invalidateC00();
}
