#include "geos/vmodel/NgmVModel.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgIntVector3D.h"
#include "geos/interpol/NgmABlock.h"
#include "geos/vmodel/NgmCvvBuilder.h"
#include "vmodel/private/NgmBulkCovas.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <memory>

// Covariances of blocks.

namespace {

constexpr int REFERENCE_POINTS = 14;
constexpr int FEWEST_POINTS = 3;
constexpr int MOST_POINTS = 12;
constexpr int MOST_VERTICAL_POINTS = 10;

/// Mean of calcCova() over all pairs of two sets of as many points.
void meanOfPairs(const NgmVModel &model, const QVector<NbgVector3D> &a,
                 const QVector<NbgVector3D> &b, NgmMatrix &mean)
{
  mean.resize(model.getNVariables(), false);
  NgmBulkCovas::sumOfPairs(model, a, b, mean);
  mean.scalarMultiply(1. / (double(a.size()) * b.size()));
}

/// The largest number, at most 10, of multiples of `step` that fit.
int verticalPoints(double size, double step)
{
  const double ratio = (size + 1e-10) / step;
  if (!(step > 0.) || !(ratio >= 1.))
    return 1;
  if (ratio > 1e12)
    return MOST_VERTICAL_POINTS;
  for (double i = std::max(1., std::floor(ratio / (MOST_VERTICAL_POINTS + 1)));; ++i) {
    const double number = std::floor((size + 1e-10) / (i * step));
    if (number <= MOST_VERTICAL_POINTS)
      return std::max(1, int(number));
  }
}

}  // namespace

void NgmVModel::calcCvv(const NgmABlock &block, qint64 seed, NgmMatrix &cvv) const
{
  QVector<NbgVector3D> points, jittered;
  block.getDiscretizationPoints(points);
  block.getRandomPoints(seed, jittered, false);
  if (jittered.size() != points.size())
    throw NbeProgrammingError(QStringLiteral("NgmVModel::calcCvv: invalid number of disc. points"));
  meanOfPairs(*this, points, jittered, cvv);
}

void NgmVModel::calcCovBlockBlock(const NgmABlock &block, const NbgVector3D &shift,
                                  NgmMatrix &covas) const
{
  QVector<NbgVector3D> points;
  block.getDiscretizationPoints(points);
  QVector<NbgVector3D> shifted(points);
  for (NbgVector3D &point : shifted)
    point += shift;
  meanOfPairs(*this, points, shifted, covas);
}

NgmMatrix NgmVModel::computeMeanCvv(const NgmABlock &block) const
{
  NgmCvvBuilder builder;
  builder.setVModel(*this);
  builder.setBlockDefinition(block);
  const NbcAProgress::State state = builder.execute();
  if (state == NbcAProgress::INTERRUPTED)
    throw NbeUserError(QObject::tr("Block Covariance matrix calculation aborted"));
  if (state != NbcAProgress::COMPLETED)
    throw NbeUserError(QObject::tr("Block Covariance matrix calculation failed"));
  return builder.getMeanCvv();
}

NbgIntVector3D NgmVModel::findBestDiscretization(const NgmABlock &block, double verticalStep,
                                                 double tolerance, QVector<double> *history) const
{
  const int vertical = block.is3D() ? verticalPoints(block.getSize().z(), verticalStep) : 1;
  const std::unique_ptr<NgmABlock> trial(block.clone());
  trial->setDiscretizationStepsSize(NbgVector3D::Null);
  const auto calcCova = [&](int n) {
    trial->setDiscretizationPointsNumber(NbgIntVector3D(n, n, vertical));
    const double cova = _calcCovaCenterBlock(*trial);
    if (history)
      history->append(cova);
    return cova;
  };
  if (history)
    history->clear();
  const double reference = calcCova(REFERENCE_POINTS);
  int n = FEWEST_POINTS;
  while (!(std::abs(reference - calcCova(n)) / reference < tolerance) && n < MOST_POINTS)
    ++n;
  return {n, n, vertical};
}

double NgmVModel::_calcCovaCenterBlock(const NgmABlock &block) const
{
  QVector<NbgVector3D> points;
  block.getDiscretizationPoints(points);
  const NbgVector3D centre;
  NgmMatrix covas(_nVariables, _nVariables, false);
  calcCovasBlockSet(points.size(), points.constData(), 1, centre.getData(), centre.getData() + 1,
                    centre.getData() + 2, covas);
  return covas(0, 0);
}
