#pragma once

#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeError.h"
#include "geos/base/NgcACalculatorComposite.h"
#include "geos/base/NgcACalculatorSequentialBuffer.h"
#include "geos/base/NgcAVariableCreator.h"
#include "geos/base/NgwAThread.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdDataSetPoints.h"
#include "support/TestData.h"

#include <QMutex>
#include <QStringList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

/// Small calculators that do nothing of interest but show how a run goes.
namespace testcalc {

using Provider = QSharedPointer<NbpMemoryProviderPointsW>;

/// Points without coordinates' meaning: variable "IN" with values 0, 1, 2, ... and an empty "OUT".
inline Provider makeCounting(int n)
{
  auto provider = Provider::create(NbgEDimension::DIM_2D, n);
  provider->addXVariable(testsupport::uniformValues(1, n, 0., 100.));
  provider->addYVariable(testsupport::uniformValues(2, n, 0., 100.));
  std::vector<double> values(n);
  for (int i = 0; i < n; ++i)
    values[i] = i;
  provider->addVariable(QStringLiteral("IN"), values);
  provider->addEmptyVariableSimple(QStringLiteral("OUT"), Nbd::TYPE_DOUBLE);
  return provider;
}

template <class P>
NgdDataSetPoints makeDataSet(const P &provider)
{
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  return dataSet;
}

template <class DataSet, class P>
void assign(DataSet &dataSet, const P &provider, const QString &role, const char *name)
{
  dataSet.assignVariable(role, provider->getIdFromName(QLatin1String(name)));
}

/// All values of a double variable, as the provider gives them.
template <class P>
std::vector<double> valuesOf(const P &provider, const char *name)
{
  NgdDataSetPoints dataSet = makeDataSet(provider);
  assign(dataSet, provider, Nbd::Role::V, name);
  dataSet.openAllVariables();
  NbdDataPoints buffer;
  dataSet.loadAllData(buffer, false, false);
  dataSet.closeAllVariables();
  const NbdVariableDouble &variable = buffer.getDataTableConst().getVarDoubleRef(Nbd::Role::V);
  return variable.getVector();
}

inline std::string messageOf(const std::function<void()> &call)
{
  try {
    call();
  } catch (const NbeError &error) {
    return error.getMessage().toStdString();
  }
  return "nothing thrown";
}

inline std::string errorOf(const NbcAProgress &progress)
{
  return progress.getErrorMessage().toStdString();
}

/// Writes OUT = 2 IN + 1 in buffers of a few samples; keeps a diary of the virtual operations.
class Doubler : public NgcAVariableCreator
{
public:
  explicit Doubler(int nSamplesPerBuffer = 10)
      : NgcAVariableCreator(Nbd::Role::VOUTPUT), _nSamplesPerBuffer(nSamplesPerBuffer)
  {
    _addVariableRule(Nbd::Dataset::OUTPUT, Nbd::Role::VINPUT, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1,
                     1);
    setNThread(2);
  }
  ~Doubler() override { _finish(); }

  void setProvider(const Provider &provider)
  {
    NgdDataSetPoints dataSet = makeDataSet(provider);
    assign(dataSet, provider, Nbd::Role::VINPUT, "IN");
    assign(dataSet, provider, Nbd::Role::VOUTPUT, "OUT");
    setOutputDataSet(dataSet);
  }

  /// Called by a worker for every buffer, with how many were taken before it.
  std::function<void(int)> onBuffer;
  /// Called by the run, with the name of the operation.
  std::function<void(const QString &)> onStep;
  QStringList diary;
  std::atomic<int> nTaken{0};

protected:
  void _checkDatasets() override
  {
    _note("_checkDatasets");
    NgcAVariableCreator::_checkDatasets();
  }
  void _addRuntimeConstraints() override { _note("_addRuntimeConstraints"); }
  void _checkConstraints() override
  {
    _note("_checkConstraints");
    NgcAVariableCreator::_checkConstraints();
  }
  void _preProcessing() override
  {
    _note("_preProcessing");
    NgcAVariableCreator::_preProcessing();
    diary.append(getProgressMessageDetail());
    nTaken = 0;
  }
  void _initBufferManager() override
  {
    _note("_initBufferManager");
    _getBufferManager()->setNSamplesPerBuffer(_nSamplesPerBuffer);
  }
  void _initCalculatorCounter() override
  {
    _note("_initCalculatorCounter");
    NgcAVariableCreator::_initCalculatorCounter();
  }
  void _createBufferIterator() override
  {
    _note("_createBufferIterator");
    NgcAVariableCreator::_createBufferIterator();
  }
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override
  {
    _note("_createComputingThread");
    return new Worker(pool, this);
  }
  void _postProcessing() override
  {
    _note("_postProcessing");
    NgcAVariableCreator::_postProcessing();
    diary.append(getProgressMessageDetail());
  }
  void _cleanup() override
  {
    _note("_cleanup");
    NgcAVariableCreator::_cleanup();
  }
  void _errorOccurred(const NbeError &error) override
  {
    _note("_errorOccurred");
    NgcAVariableCreator::_errorOccurred(error);
  }

  virtual void _process(NbdAData &buffer)
  {
    const double *in = buffer.getDataTable().getVarDoubleRef(Nbd::Role::VINPUT).getArrayConst();
    double *out = buffer.getDataTable().getVarDoubleRef(Nbd::Role::VOUTPUT).getArray();
    for (int i = 0; i < buffer.getNSamples(); ++i)
      out[i] = 2. * in[i] + 1.;
  }

  void _note(const char *step)
  {
    diary.append(QLatin1String(step));
    if (onStep)
      onStep(QLatin1String(step));
  }

private:
  class Worker : public NgwAThread
  {
  public:
    Worker(NgwThreadPool *pool, Doubler *calculator) : NgwAThread(pool), _calculator(calculator) {}

  protected:
    void _run() override
    {
      while (std::unique_ptr<NbdAData> buffer{_calculator->getNextBuffer()}) {
        const int rank = _calculator->nTaken++;
        if (_calculator->onBuffer)
          _calculator->onBuffer(rank);
        _calculator->_process(*buffer);
        _calculator->saveBuffer(*buffer);
      }
    }

  private:
    Doubler *_calculator;
  };

  int _nSamplesPerBuffer;
};

}  // namespace testcalc
