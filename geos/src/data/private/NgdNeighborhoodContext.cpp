#include "geos/data/NgdNeighborhoodContext.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataLines.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgBox.h"
#include "data/private/NgdNeighborhoodLevel.h"
#include "data/private/NgdNeighborhoodSearch.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/data/NgdNeighborhoodUnique.h"
#include "geos/interpol/NgmBlock.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

bool usesBlock(const NgmNeighborhoodMoving &parameters)
{
  return parameters.getMovingNeighborhoodMode() == NgcEMovNeighMode::FROM_BLOCK ||
         parameters.isRuleBlockKeepAll() || parameters.isRuleMaximumPerBlock();
}

int toCode(double value)
{
  if (!NbbGlobal::isDefined(value) || !(std::abs(value) < 2147483647.5))
    return NbbGlobal::I32_FFFF;
  return int(std::lround(value));
}

/// Cells of about eight samples when all of them are enabled.
int octreeDepth(int nSamples, int nDimensions)
{
  int depth = 1;
  while (depth < 12 && std::ldexp(8., depth * nDimensions) < nSamples)
    ++depth;
  return depth;
}

}  // namespace

NgdNeighborhoodContext::NgdNeighborhoodContext()
    : _target(&_pointTarget),
      _search(std::make_unique<NgdNeighborhoodSearch>()),
      _rejectionTargetValue(NbbGlobal::D_FFFF),
      _selected(&_neighbors)
{
}

NgdNeighborhoodContext::~NgdNeighborhoodContext() = default;

void NgdNeighborhoodContext::initialize(const NgdANeighborhood &neighborhood,
                                        const QList<NbdAVariableNumeric *> &mainVariables,
                                        const QMap<int, NbdAVariableNumeric *> &collocated)
{
  if (_moving || _unique)
    NBE_FAIL(QStringLiteral("Should be called only once"));
  if (mainVariables.isEmpty())
    NBE_FAIL(QStringLiteral("Wrong number of main variables"));

  if (!neighborhood.isMoving()) {
    if (neighborhood.isRejectionActive())
      NBE_FAIL(QStringLiteral("Rejection is not allowed in unique neighborhood"));
    _unique = static_cast<const NgdNeighborhoodUnique *>(&neighborhood);
    _initializeUnique(mainVariables);
    return;
  }

  const auto *moving = static_cast<const NgdNeighborhoodMoving *>(&neighborhood);
  if (!moving->isDataLoaded())
    NBE_FAIL(QStringLiteral("Moving neighborhood not initialized"));
  _moving = moving;
  _mainVariables = mainVariables;
  _checkParameters();
  _search->setIndex(_moving->getSortedData());
  _setCollocated(collocated);
  _prepareLevels();
  _prepareColumns();
  _prepareSamples();
  _prepareCodes();
  _prepareCaps();
  if (_moving->isRejectionActive()) {
    _checkRejection();
    _prepareRejection();
  }
}

void NgdNeighborhoodContext::initialize(const NgdANeighborhood &neighborhood, bool localEllipsoid,
                                        bool useConvention, int conventionId, bool force2D,
                                        const NbdDataTable &targets,
                                        const QList<NbdAVariableNumeric *> &mainVariables,
                                        const QMap<int, NbdAVariableNumeric *> &collocated)
{
  initialize(neighborhood, mainVariables, collocated);
  if (!localEllipsoid)
    return;
  for (_Level &level : _levels) {
    level.parameters.setDimension(_moving->getAllData().getNDimensions());
    level.parameters.setAnglesConvention(useConvention, conventionId);
    level.parameters.setForce2D(force2D);
    level.parameters.registerVariables(targets);
  }
}

void NgdNeighborhoodContext::setTargetData(const NbdDataTable &targets,
                                           const QMap<int, NbdAVariableNumeric *> &collocated)
{
  if (_moving)
    _setCollocated(collocated);
  for (_Level &level : _levels) {
    if (!level.parameters.needPatching())
      continue;
    level.parameters.unpatchNeighborhood();
    level.parameters.registerVariables(targets);
  }
}

void NgdNeighborhoodContext::setTargetBlock(const NgmABlock &block)
{
  _blockTarget.setBlock(block);
  _blockProblem.clear();
  const auto *regular = dynamic_cast<const NgmBlock *>(&_blockTarget.getBlock());
  if (regular)
    regular->isSizeDefined(_blockProblem);
  if (_blockProblem.isEmpty())
    _refreshVolumes();
}

void NgdNeighborhoodContext::setAdditionalInput(const NbdAData *data, const QString &role,
                                                int maximum)
{
  if (!_moving)
    NBE_FAIL(QStringLiteral("Moving neighborhood not initialized"));
  if (_moving->isRejectionActive())
    NBE_FAIL(QStringLiteral("Rejection not allowed with additional input data"));
  if (!dynamic_cast<const NbdDataPoints *>(data) && !dynamic_cast<const NbdDataLines *>(data))
    NBE_FAIL(QStringLiteral("Unexpected type of NbdAData"));

  NgdNeighborhoodSearch::Additional &additional = _search->additional;
  additional = NgdNeighborhoodSearch::Additional();
  additional.data = data;
  additional.maximum = maximum;
  for (const NbdAVariableNumeric *variable : data->getDataTableConst().getVarsNumeric(role))
    additional.variables.push_back(variable);

  const int n = data->getNSamples();
  NbgBox box;
  for (int position = 0; position < n; ++position) {
    additional.locations.push_back(data->getLocation(position));
    box.extendWith(additional.locations.back());
  }
  const NbgEDimension dimensions[] = {NbgEDimension::DIM_1D, NbgEDimension::DIM_2D,
                                      NbgEDimension::DIM_3D};
  const int nDimensions = _search->samples.nDimensions;
  additional.index.setDimension(dimensions[nDimensions - 1]);
  additional.index.setMaximumDepth(octreeDepth(n, nDimensions));
  additional.index.setBoundingBox(box, NbgRotation());
}

void NgdNeighborhoodContext::enableAdditionalInputSample(int position)
{
  NgdNeighborhoodSearch::Additional &additional = _search->additional;
  additional.index.insertSample(position, additional.locations[position]);
}

void NgdNeighborhoodContext::setFaultsEnabled(bool enabled)
{
  _faultsEnabled = enabled;
}

void NgdNeighborhoodContext::setFaultsData(const NgmNeighborhoodFaultSet &faults)
{
  _search->faults.set = faults;
}

void NgdNeighborhoodContext::setFaultsMode(const NgcEFaultsMode &mode)
{
  _search->faults.mode = mode;
}

// Preparation.

void NgdNeighborhoodContext::_initializeUnique(const QList<NbdAVariableNumeric *> &mainVariables)
{
  _selected = &_unique->getAllData();
  _count = _selected->getNSamples();
  _ranks.resize(_count);
  std::iota(_ranks.begin(), _ranks.end(), 0);
  for (NbdAVariableNumeric *variable : mainVariables) {
    _mainColumns.push_back(variable);
    _mainDoubles.push_back(dynamic_cast<const NbdVariableDouble *>(variable));
  }
}

void NgdNeighborhoodContext::_checkParameters() const
{
  QStringList errors;
  QStringList warnings;
  const int dimension = _moving->getAllData().getNDimensions();
  bool isStandard = true;
  for (const NgdNeighborhoodMoving::Level &level : _moving->getLevels()) {
    if (!level.parameters.checkParameters(dimension, errors, warnings)) {
      const QString text = isStandard
                               ? QObject::tr("Wrong neighborhood parameters:\n%1")
                               : QObject::tr("Wrong alternative neighborhood parameters:\n%1");
      throw NbeUserError(text.arg(errors.join(QString())) +
                         QObject::tr("Inconsistencies detected"));
    }
    isStandard = false;
  }
}

void NgdNeighborhoodContext::_setCollocated(const QMap<int, NbdAVariableNumeric *> &collocated)
{
  for (const int index : collocated.keys()) {
    if (index < 0 || index >= _mainVariables.size())
      NBE_FAIL(QStringLiteral("Wrong collocated variable index"));
  }
  _collocated = collocated;
}

void NgdNeighborhoodContext::_prepareLevels()
{
  const int nDimensions = std::max(1, _moving->getAllData().getNDimensions());
  _levels.reserve(_moving->getLevels().size());
  for (const NgdNeighborhoodMoving::Level &level : _moving->getLevels()) {
    const NgdSearchVolume volume(level.parameters, _moving->getFrame(), nDimensions, nullptr);
    _levels.push_back({level.parameters, level.code, level.name, volume, volume});
  }
  _search->samples.nDimensions = nDimensions;
}

/// The search volumes of targets with a block.
void NgdNeighborhoodContext::_refreshVolumes()
{
  const auto *block = dynamic_cast<const NgmBlock *>(&_blockTarget.getBlock());
  for (_Level &level : _levels)
    level.blockVolume =
        NgdSearchVolume(level.parameters, _moving->getFrame(), _search->samples.nDimensions, block);
}

void NgdNeighborhoodContext::_prepareColumns()
{
  const NbdDataPoints &data = _moving->getAllData();
  _neighbors.setNDimensions(data.getNDimensions());
  _neighbors.getDataTable() = data.getDataTableConst();
  _neighbors.setResizedTo(0);

  const QList<NbdAVariable *> from = data.getDataTableConst().getAllVars();
  const QList<NbdAVariable *> to = _neighbors.getDataTable().getAllVars();
  for (int i = 0; i < from.size(); ++i) {
    _Column column = {from[i], to[i]};
    if ((column.toDouble = dynamic_cast<NbdVariableDouble *>(to[i])))
      column.doubles = static_cast<const NbdVariableDouble *>(from[i])->getArrayConst();
    else if ((column.toInt64 = dynamic_cast<NbdVariableInt64 *>(to[i])))
      column.integers = static_cast<const NbdVariableInt64 *>(from[i])->getArrayConst();
    _columns.push_back(column);
  }
  for (NbdAVariableNumeric *variable : _mainVariables) {
    const int column = from.indexOf(variable);
    if (column < 0)
      NBE_FAIL(QStringLiteral("Wrong number of main variables"));
    _mainColumns.push_back(static_cast<NbdAVariableNumeric *>(_columns[column].to));
    _mainDoubles.push_back(_columns[column].toDouble);
  }
}

void NgdNeighborhoodContext::_prepareSamples()
{
  const NbdDataPoints &data = _moving->getAllData();
  NgdNeighborhoodSearch::Samples &samples = _search->samples;
  const int n = samples.n = data.getNSamples();
  samples.x = data.getCoordinates(0)->getArrayConst();
  samples.y = data.getCoordinates(1)->getArrayConst();
  samples.z = data.getCoordinates(2)->getArrayConst();
  samples.nVariables = _mainVariables.size();

  const bool needsAll = _levels.front().parameters.isRuleIsotopicSearch();
  samples.usable.assign(n, needsAll);
  if (samples.nVariables > 1)
    samples.defined.reserve(std::size_t(n) * samples.nVariables);
  for (const NbdAVariableNumeric *variable : _mainVariables) {
    for (int rank = 0; rank < n; ++rank) {
      const bool isDefined = !variable->isUndefined(rank);
      samples.usable[rank] =
          needsAll ? samples.usable[rank] && isDefined : samples.usable[rank] || isDefined;
      if (samples.nVariables > 1)
        samples.defined.push_back(isDefined);
    }
  }
}

void NgdNeighborhoodContext::_prepareCodes()
{
  const NbdDataTable &table = _moving->getAllData().getDataTableConst();
  const NbdAVariableNumeric *codes = table.getVarNumeric(Nbd::Role::CODE);
  if (!codes) {
    if (_levels.front().parameters.isRulePerCode())
      NBE_FAIL(QStringLiteral("Code variable not found"));
    return;
  }
  _search->samples.hasCodes = true;
  std::vector<int> &sampleCodes = _search->samples.codes;
  sampleCodes.resize(_search->samples.n);
  for (int rank = 0; rank < _search->samples.n; ++rank)
    sampleCodes[rank] = toCode(codes->getValue(rank));
}

void NgdNeighborhoodContext::_prepareCaps()
{
  const NgmNeighborhoodMoving &parameters = _levels.front().parameters;
  NgdNeighborhoodSearch::Samples &samples = _search->samples;
  if (parameters.isRuleCutLarge())
    samples.largeValues =
        _findCapValues(Nbd::Role::LARGE_CUTOFF, _largeCapVariable, samples.largeCopy,
                       QStringLiteral("Large cutoff variable not found"),
                       QStringLiteral("Large cutoff variable not found in main variables"));
  if (parameters.isRuleCutSmall())
    samples.smallValues =
        _findCapValues(Nbd::Role::SMALL_CUTOFF, _smallCapVariable, samples.smallCopy,
                       QStringLiteral("Small cutoff variable not found"),
                       QStringLiteral("Small cutoff variable not found in main variables"));
}

/// Values of the variable of a role, which also is a main one, by its name. `copy` holds them when
/// they are no doubles.
const double *NgdNeighborhoodContext::_findCapValues(const QString &role, int &mainIndex,
                                                     std::vector<double> &copy,
                                                     const QString &notFound,
                                                     const QString &notMain) const
{
  const NbdDataTable &table = _moving->getAllData().getDataTableConst();
  const NbdAVariableNumeric *variable = table.getVarNumeric(role);
  if (!variable)
    NBE_FAIL(notFound);
  const auto isTheSame = [variable](const NbdAVariableNumeric *main) {
    return main->getName() == variable->getName();
  };
  const auto found = std::find_if(_mainVariables.begin(), _mainVariables.end(), isTheSame);
  if (found == _mainVariables.end())
    NBE_FAIL(notMain);
  mainIndex = int(found - _mainVariables.begin());
  if (const auto *doubles = dynamic_cast<const NbdVariableDouble *>(variable))
    return doubles->getArrayConst();
  for (int rank = 0; rank < _search->samples.n; ++rank)
    copy.push_back(variable->getValue(rank));
  return copy.data();
}

void NgdNeighborhoodContext::_checkRejection() const
{
  for (const _Level &level : _levels) {
    if (usesBlock(level.parameters))
      NBE_FAIL(QStringLiteral("Block rules cannot be used with rejection"));
    if (level.parameters.isRuleProximity())
      NBE_FAIL(QStringLiteral("Proximity parallelepiped cannot be used with rejection"));
  }
  for (const NbdAVariableNumeric *variable : _mainVariables) {
    if (variable->isMultiRealizations() || variable->hasMacroIndex())
      NBE_FAIL(QStringLiteral("Macro variables (simulations) cannot be used with rejection"));
  }

  const int index = _moving->getRejectionInterestVarIdx();
  const bool keepsNothing =
      _moving->getRejectionAuxVarOption() == NgcERejectionAuxVarOption::AUX_VAR_KEEP_NOTHING;
  if (keepsNothing && index >= _mainVariables.size())
    NBE_FAIL(QStringLiteral("Wrong interest variable index for rejection (keep nothing used)"));
  if (keepsNothing && index < 0)
    return;
  if (_mainVariables.size() > 1 && (index < 0 || index >= _mainVariables.size()))
    NBE_FAIL(QStringLiteral("Wrong interest variable index for rejection (multivariate case)"));
  if (index < 0 || index >= _mainVariables.size())
    NBE_FAIL(QStringLiteral("Wrong interest variable relative index for rejection"));
  const NbdDataTable &table = _moving->getAllData().getDataTableConst();
  if (table.getAbsoluteRank(_moving->getRoleMain(), index) < 0)
    NBE_FAIL(QStringLiteral("Wrong interest variable absolute index for rejection"));
}

void NgdNeighborhoodContext::_prepareRejection()
{
  NgdNeighborhoodSearch::Rejection &rejection = _search->rejection;
  rejection.active = true;
  rejection.mode = _moving->getRejectionMode();
  rejection.option = _moving->getRejectionAuxVarOption();
  rejection.partition = _moving->getRejectionPartition();
  rejection.variable = _moving->getRejectionInterestVarIdx();
  if (rejection.mode != NgcERejectionMode::REJECTION_BY_LINE)
    return;

  const NbdDataTable &table = _moving->getAllData().getDataTableConst();
  const NbdAVariableNumeric *lines = table.getVarNumeric(Nbd::Role::OBJECT_ID);
  if (!lines)
    NBE_FAIL(QStringLiteral("Line id variable not found (rejection by line not allowed)"));
  std::vector<qint64> &sampleLines = _search->samples.lines;
  for (int rank = 0; rank < _search->samples.n; ++rank) {
    const double value = lines->getValue(rank);
    const bool isInteger =
        NbbGlobal::isDefined(value) && std::abs(value) < 0x1p53 && value == std::floor(value);
    sampleLines.push_back(isInteger ? qint64(value) : NbbGlobal::I64_FFFF);
  }
}

// Targets.

const NgcENeighborhoodErrorCode &NgdNeighborhoodContext::setTargetLocation(
    const NbgVector3D &location, int *nestedIndex)
{
  return setTargetLocation(location, -1, NbbGlobal::I64_FFFF, nestedIndex);
}

const NgcENeighborhoodErrorCode &NgdNeighborhoodContext::setTargetLocation(
    const NbgVector3D &location, int targetIndex, qint64 targetSN, int *nestedIndex)
{
  *nestedIndex = -1;
  _target = targetIndex >= 0 && _blockTarget.isBlock() ? &_blockTarget : &_pointTarget;
  _target->setCenter(location);
  if (_unique)
    return NgcENeighborhoodErrorCode::NEIGH_SUCCESS;

  if (_target->isBlock() && !_blockProblem.isEmpty() && usesBlock(_levels.front().parameters))
    throw NbeUserError(QObject::tr("Please provide a valid block size when using block "
                                   "neighborhood options (%1)")
                           .arg(_blockProblem));
  if (_search->rejection.active)
    _locateRejectionTarget(targetSN);

  const NgcENeighborhoodErrorCode &outcome = _isInForbiddenPolygon()
                                                 ? NgcENeighborhoodErrorCode::NEIGH_NO_SAMPLE
                                                 : _searchLevels(targetIndex, nestedIndex);
  if (*nestedIndex < 0)
    _search->clearSelected();
  _takeOver();
  if (outcome == NgcENeighborhoodErrorCode::NEIGH_SUCCESS ||
      outcome == NgcENeighborhoodErrorCode::NEIGH_PROXIMITY)
    _applyCaps();
  if (*nestedIndex >= 0)
    _appendCollocatedTarget(targetIndex);
  return outcome;
}

void NgdNeighborhoodContext::_locateRejectionTarget(qint64 targetSN)
{
  if (targetSN <= 0)
    NBE_FAIL(QStringLiteral("targetSN must be defined to use rejection."));
  NgdNeighborhoodSearch::Rejection &rejection = _search->rejection;
  rejection.targetRank = -1;
  _rejectionTargetValue = NbbGlobal::D_FFFF;
  const NbdVariableInt64 *numbers = _moving->getAllData().getVariableSN();
  const int n = _search->samples.n;
  if (!numbers || n == 0)
    return;
  const auto *first = numbers->getArrayConst();
  const auto *found = std::lower_bound(first, first + n, targetSN);
  if (found == first + n || *found != targetSN)
    return;

  rejection.targetRank = int(found - first);
  if (rejection.variable >= 0)
    _rejectionTargetValue = _mainVariables[rejection.variable]->getValue(rejection.targetRank);
  if (rejection.mode == NgcERejectionMode::REJECTION_BY_LINE &&
      _search->samples.lines[rejection.targetRank] == NbbGlobal::I64_FFFF)
    NBE_FAIL(QStringLiteral("Wrong line id"));
  if (rejection.mode == NgcERejectionMode::REJECTION_BY_PARTITION)
    rejection.partition.setCenter(_target->getCenter());
}

/// Finds where the target stands among the faults; true when no sample may be used there.
bool NgdNeighborhoodContext::_isInForbiddenPolygon()
{
  NgdNeighborhoodSearch::Faults &faults = _search->faults;
  faults.active = _faultsEnabled && !faults.set.isEmpty();
  faults.targetPolygon = -1;
  if (!faults.active || faults.mode == NgcEFaultsMode::IGNORE_POYGONAL_STATUS)
    return false;
  faults.targetPolygon = faults.set.isInsideFaultId(_target->getCenter());
  _currentLevel = 0;
  return faults.targetPolygon >= 0 && faults.mode == NgcEFaultsMode::DO_NOT_CALCULATE_INSIDE;
}

const NgcENeighborhoodErrorCode &NgdNeighborhoodContext::_searchLevels(int targetIndex,
                                                                       int *nestedIndex)
{
  const NgcENeighborhoodErrorCode *outcome = &NgcENeighborhoodErrorCode::NEIGH_NO_SAMPLE;
  for (_currentLevel = 0;; ++_currentLevel) {
    _Level &level = _levels[_currentLevel];
    if (level.parameters.needPatching() && !_patch(level, targetIndex))
      return NgcENeighborhoodErrorCode::NEIGH_UNDEF_LGS;
    outcome = &_search->run(level.parameters,
                            _target->isBlock() ? level.blockVolume : level.pointVolume, *_target);
    const bool isFinal = *outcome == NgcENeighborhoodErrorCode::NEIGH_SUCCESS ||
                         *outcome == NgcENeighborhoodErrorCode::NEIGH_MAX_IN_BLOCK ||
                         *outcome == NgcENeighborhoodErrorCode::NEIGH_PROXIMITY;
    if (isFinal || _currentLevel + 1 == int(_levels.size())) {
      if (isFinal || *outcome == NgcENeighborhoodErrorCode::NEIGH_BLOCK_ONLY)
        *nestedIndex = _currentLevel;
      return *outcome;
    }
  }
}

/// Gives a level the ellipsoid of a target; without index that of its parameters.
bool NgdNeighborhoodContext::_patch(_Level &level, int targetIndex)
{
  if (targetIndex < 0)
    level.parameters.unpatchNeighborhood();
  else if (!level.parameters.patchNeighborhood(targetIndex))
    return false;
  const bool isBlock = _target->isBlock();
  const auto *block = isBlock ? dynamic_cast<const NgmBlock *>(&_target->getBlock()) : nullptr;
  (isBlock ? level.blockVolume : level.pointVolume) =
      NgdSearchVolume(level.parameters, _moving->getFrame(), _search->samples.nDimensions, block);
  return true;
}
