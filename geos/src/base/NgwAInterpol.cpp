#include "geos/base/NgwAInterpol.h"

#include "basic/data/NbdAData.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdValueConversion.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeException.h"
#include "geos/data/NgdNeighborhoodContext.h"

namespace {

/// Weights are handed in when more than that many have come together.
constexpr std::size_t weightsBatch = 10000;

template <class T>
QList<T *> variablesOf(const NbdDataTable &table)
{
  QList<T *> variables;
  for (NbdAVariable *variable : table.getAllVars()) {
    if (auto *ofType = dynamic_cast<T *>(variable))
      variables << ofType;
  }
  return variables;
}

NgdSampout::Auxiliary auxiliaryOf(const NbdDataTable &table, int position)
{
  return {NgdSampout::prepareAuxiliaryData(variablesOf<NbdAVariableNumeric>(table), position),
          NgdSampout::prepareAuxiliaryStringData(variablesOf<NbdVariableAlpha>(table), position)};
}

}  // namespace

NgwAInterpol::NgwAInterpol(NgwThreadPool *pool, NgcAInterpol &calculator)
    : NgwAThread(pool), _interpol(calculator)
{
  _setPerSampleProgress(calculator._isPerSampleProgress());
  _setProgress(&calculator);
}

NgwAInterpol::~NgwAInterpol() = default;

void NgwAInterpol::_run()
{
  _checkForStop();
  _weightsWanted = _interpol._weights != nullptr;
  if (const NgdSampout *sampout = _interpol.getSampout()) {
    const auto &moving =
        static_cast<const NgdNeighborhoodMoving &>(_interpol.getConstNeighborhood());
    _sampoutContext.reset(
        sampout->initWorker(moving.getLevels().front().parameters.isRectangular()));
  }
  _initialize();
  for (;;) {
    _checkForStop();
    const std::unique_ptr<NbdAData> buffer(_interpol.getNextBuffer());
    if (!buffer)
      break;
    _processBuffer(*buffer);
    _interpol.saveBuffer(*buffer);
  }
  _finalize();
  _flushWeights();
}

void NgwAInterpol::test(NbdAData &buffer, NgmAInterpolTestResult &result)
{
  _testResult = &result;
  _initialize();
  _processBuffer(buffer);
  _testResult = nullptr;
}

void NgwAInterpol::_finalize() {}

void NgwAInterpol::_checkForStop() const
{
  _interpol._checkForProgressStop();
  // Another worker has failed and has told why.
  if (!_interpol._getPool().isOk())
    throw NbeException();
}

void NgwAInterpol::_initializeNeighborhood(NgdNeighborhoodContext &context,
                                           const NbdDataTable &targets,
                                           const QList<NbdAVariableNumeric *> &mainVariables,
                                           const QMap<int, NbdAVariableNumeric *> &collocated) const
{
  const bool localEllipsoid = _interpol.isLGSEnabled() && _interpol.isUsingMoving();
  context.initialize(_interpol.getConstNeighborhood(), localEllipsoid,
                     _interpol.isUsingLGSNeighRotationConvention(),
                     _interpol.getLGSNeighRotationConvention(),
                     _interpol.getLGSNeighRotationForce2D(), targets, mainVariables, collocated);
  context.setFaultsEnabled(_interpol.areFaultsActive());
  context.setFaultsData(_interpol.getFaultsData());
  context.setFaultsMode(_interpol.getFaultsMode());
}

// Weights.

void NgwAInterpol::_addWeights(int n, const qint64 *sampleNumbers, const double *weights)
{
  for (int i = 0; i < n; ++i) {
    if (sampleNumbers[i] > 0 && NbbGlobal::isDefined(weights[i]))
      _weights.push_back({sampleNumbers[i], weights[i]});
  }
  if (_weights.size() > weightsBatch)
    _flushWeights();
}

void NgwAInterpol::_flushWeights()
{
  if (_weights.empty())
    return;
  _interpol.saveWeights(_weights);
  _weights.clear();
}

// Sample output.

void NgwAInterpol::_beginSampoutTarget(const NgdNeighborhoodContext &context,
                                       const NbdAData &buffer, int position)
{
  _sampoutNeighbors = &context;
  _sampoutContext->setTarget(buffer.getLocation(position));
  _sampoutContext->setSearchEllipsoid(context.getCurrentParams());
  _codeCount = context.getNSelectedCodes();
  if (_sampoutContext->hasAuxiliary())
    _targetAuxiliary = auxiliaryOf(buffer.getDataTableConst(), position);
}

void NgwAInterpol::_addSampoutRow(int neighbor, int variable, double value, double weight,
                                  double rhs)
{
  const NgdSampout &sampout = *_interpol.getSampout();
  const NbdDataPoints &neighbors = _sampoutNeighbors->getNeighbors();
  NgdSampout::Neighbor row;
  row.location = neighbors.getLocation(neighbor);
  row.variableName = sampout.getVariableNames().value(variable);
  row.value = value;
  row.weight = weight;
  row.rhs = rhs;
  if (const NbdAVariableNumeric *codes = _sampoutNeighbors->getNumericVariable(Nbd::Role::CODE)) {
    row.code = nbdConvert<int>(codes->getValue(neighbor));
    row.codeCount = _codeCount;
  }
  NgdSampout::Auxiliary auxiliary;
  if (_sampoutContext->hasAuxiliary())
    auxiliary = auxiliaryOf(neighbors.getDataTableConst(), neighbor);
  sampout.addNeighbor(*_sampoutContext, row, auxiliary, _targetAuxiliary);
}

void NgwAInterpol::_endSampoutTarget()
{
  _interpol.getSampout()->sampoutEndTarget(*_sampoutContext);
}
