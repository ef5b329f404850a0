#include "geos/vmodel/NgmCvvBuilder.h"

#include "basic/error/NbeAssertion.h"
#include "geos/interpol/NgmABlock.h"
#include "geos/simu/NgmRandomNumberGenerator.h"
#include "geos/vmodel/NgmVModel.h"

#include <QObject>

#include <algorithm>

NgmCvvBuilder::NgmCvvBuilder()
{
  setProgressMessage(QObject::tr("Compute Block Covariance"));
}

NgmCvvBuilder::~NgmCvvBuilder()
{
  _finish();
}

void NgmCvvBuilder::setVModel(const NgmVModel &model)
{
  _model = std::make_unique<NgmVModel>(model);
}

void NgmCvvBuilder::setBlockDefinition(const NgmABlock &block)
{
  _block.reset(block.clone());
}

QVector<qint64> NgmCvvBuilder::getSeeds() const
{
  NgmRandomNumberGenerator generator(_seed, NgmRandomNumberGenerator::DEFAULT_SIZE);
  QVector<qint64> seeds(std::max(0, _nTries));
  for (qint64 &seed : seeds)
    seed = qint64(generator.nextNumber());
  return seeds;
}

NgmMatrix NgmCvvBuilder::getMeanCvv() const
{
  if (_cvv.isEmpty())
    return NgmMatrix(0, 0, false);
  NgmMatrix mean(_cvv.first());
  for (int i = 1; i < _cvv.size(); ++i)
    mean.add(_cvv[i]);
  mean.scalarMultiply(1. / _cvv.size());
  return mean;
}

void NgmCvvBuilder::_doFinalChecks()
{
  NgcACalculator::_doFinalChecks();
  if (!_block || !_block->isValid() || _block->getDiscretizationPointsNumber().product() < 1)
    NBE_FAIL(QStringLiteral("invalid block discretization (< 1 point)."));
  if (!_model || !_model->isValid())
    NBE_FAIL(QStringLiteral("invalid model."));
}

void NgmCvvBuilder::_doRun()
{
  _cvv.clear();
  _doFinalChecks();
  const QVector<qint64> seeds = getSeeds();
  _initCounter(seeds.size());
  QList<NgmMatrix> cvv;
  for (const qint64 seed : seeds) {
    _checkForProgressStop();
    NgmMatrix matrix(_model->getNVariables(), _model->getNVariables(), true);
    _model->calcCvv(*_block, seed, matrix);
    cvv << matrix;
    _incrementCounter(1);
  }
  _cvv = cvv;
}
