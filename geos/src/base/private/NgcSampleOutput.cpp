#include "base/private/NgcSampleOutput.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeAssertion.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "geos/base/NgaStatSum.h"
#include "geos/data/NgdADataSet.h"

#include <QObject>

#include <algorithm>

namespace {

/// The source that the failures name.
QString calculatorPath()
{
  return QStringLiteral("base\\NgcAInterpol");
}

qint64 countSelected(const NgdADataSet &dataSet)
{
  const qint64 n = dataSet.getNSamples();
  return n > 0 ? dataSet.getSelectedSampleCount(NbiIntervalIntLargeDisjoint({0, n - 1})) : 0;
}

}  // namespace

NgcSampleOutput::NgcSampleOutput(const NgdADataSet &dataSet, const NgdADataSet &input)
    : _dataSet(dataSet)
{
  const bool sameSamples = dataSet.getNSamples() == input.getNSamples() &&
                           countSelected(dataSet) == countSelected(input);
  dataSet.createAllVariables(_buffer, false, true);
  if (sameSamples && countSelected(dataSet) > 0)
    dataSet.loadAllPointsInBuffer(_buffer);
  const NbdVariableInt64 *numbers = _buffer.getVariableSN();
  if (!sameSamples || !numbers)
    NBE_FAIL_AT(calculatorPath(), QObject::tr("Cannot read weights samples."));
  _sampleNumbers = numbers->getArrayConst();
}

int NgcSampleOutput::_find(qint64 sampleNumber) const
{
  // Without a selection a sample stands at its rank.
  const int n = _getNSamples();
  const qint64 rank = sampleNumber - 1;
  if (rank >= 0 && rank < n && _sampleNumbers[rank] == sampleNumber)
    return int(rank);
  const qint64 *const end = _sampleNumbers + n;
  const qint64 *const found = std::lower_bound(_sampleNumbers, end, sampleNumber);
  if (found == end || *found != sampleNumber)
    NBE_FAIL_AT(calculatorPath(), QObject::tr("Cannot find sample #%1").arg(sampleNumber));
  return int(found - _sampleNumbers);
}

void NgcSampleOutput::_save() const
{
  if (_getNSamples() > 0)
    _dataSet.patchFromBuffer(_buffer);
}

NbcStatBasic NgcSampleOutput::_calcStatistics(const QString &role) const
{
  const NbdAVariableNumeric &column = _buffer.getDataTableConst().getVarNumericRef(role);
  NgaStatSum sum;
  for (int position = 0; position < _getNSamples(); ++position)
    sum.addValue(column.getValue(position));
  NbcStatBasic statistics;
  sum.fill(statistics);
  return statistics;
}

NgcWeightsOutput::NgcWeightsOutput(const NgdADataSet &dataSet, const NgdADataSet &input,
                                   bool severalPasses)
    : NgcSampleOutput(dataSet, input), _severalPasses(severalPasses), _sums(_getNSamples())
{
  if (_severalPasses)
    _stored = _sums;
}

void NgcWeightsOutput::beginPass()
{
  if (_severalPasses)
    _sums = _stored;
}

void NgcWeightsOutput::endParcel()
{
  if (_severalPasses)
    _stored = _sums;
}

NbcStatBasic NgcWeightsOutput::finish()
{
  NgaExactSum total;
  for (const NgaExactSum &sum : _sums)
    total += sum;
  const double divisor = total.getValue() > 0. ? total.getValue() : 1.;

  NbdVariableDouble &weights = _getBuffer().getDataTable().getVarDoubleRef(Nbd::Role::WEIGHT);
  double *values = weights.getArray();
  for (int position = 0; position < _getNSamples(); ++position)
    values[position] = _sums[position].getValue() / divisor;
  _save();
  return _calcStatistics(Nbd::Role::WEIGHT);
}

NgcInputWriteOutput::NgcInputWriteOutput(const NgdADataSet &dataSet, const NgdADataSet &input,
                                         const QStringList &roles)
    : NgcSampleOutput(dataSet, input), _roles(roles)
{
  for (const QString &role : roles) {
    _columns << &_getBuffer().getDataTable().getVarNumericRef(role);
    for (int position = 0; position < _getNSamples(); ++position)
      _columns.last()->setToUndefined(position);
  }
}

void NgcInputWriteOutput::set(qint64 sampleNumber, const QList<double> &values)
{
  if (values.size() != _columns.size())
    NBE_FAIL_AT(calculatorPath(), QObject::tr("Inconsistent number of input write variables"));
  _find(sampleNumber);
  _values.insert(sampleNumber, values);
}

void NgcInputWriteOutput::beginPass()
{
  _values.clear();
}

void NgcInputWriteOutput::endParcel()
{
  for (auto it = _values.constBegin(); it != _values.constEnd(); ++it) {
    const int position = _find(it.key());
    for (int column = 0; column < _columns.size(); ++column)
      _columns[column]->setValue(position, it.value()[column]);
  }
  _values.clear();
}

QMap<QString, NbcStatBasic> NgcInputWriteOutput::finish()
{
  _save();
  QMap<QString, NbcStatBasic> statistics;
  for (const QString &role : qAsConst(_roles))
    statistics.insert(role, _calcStatistics(role));
  return statistics;
}
