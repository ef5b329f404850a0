#include "stats/private/NgwVariogram.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAData.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/error/NbeAssertion.h"
#include "geos/data/NgdDataDoubleBuffer.h"
#include "geos/stats/NgcVariogram.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"
#include "stats/private/NgcPairwiseSamples.h"
#include "stats/private/NgcVarioClouds.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

QStringList namesOf(const NbdDataTable &table, const QString &role)
{
  QStringList names;
  for (const NbdAVariable *variable : table.getVars(role))
    names << variable->getName();
  return names;
}

}  // namespace

NgwVariogram::NgwVariogram(NgwThreadPool *pool, NgcVariogram &calculator)
    : NgwAPairwise(pool, calculator), _calculator(calculator), _task(makeTask(calculator))
{
  const NgmVariogramExp &request = calculator.getVarioExp();
  for (int dir = 0; dir < request.getNDirections(); ++dir) {
    const int group = request.getDirection(dir).getGroupId();
    _isExclusive.push_back(dir > 0 && request.getDirection(dir - 1).getGroupId() == group &&
                           !request.isGroupDirectionsOverlapping(group));
  }
  if (_task.clouds) {
    _clouds =
        NgcVarioClouds::newClouds(_task, directionsOf(calculator), {&calculator.getStatistics()},
                                  calculator.getCloudParameters());
    _means = NgcVarioClouds::meansOf({&calculator.getStatistics()});
  }
}

NgcVarioTask NgwVariogram::makeTask(const NgcVariogram &calculator)
{
  const NgmVariogramExp &request = calculator.getVarioExp();
  return {
      NgcVarioTerms(request), request.getNVariables(), 1, true, int(calculator.getPairsFiltering()),
      request.getNeedCloud()};
}

std::vector<const NgmPairsSelectorDirection *> NgwVariogram::directionsOf(
    const NgcVariogram &calculator)
{
  const NgmVariogramExp &request = calculator.getVarioExp();
  std::vector<const NgmPairsSelectorDirection *> directions;
  for (int dir = 0; dir < request.getNDirections(); ++dir)
    directions.push_back(&request.getDirection(dir));
  return directions;
}

NgaVarioSumList NgwVariogram::makeSums(const NgcVariogram &calculator)
{
  const NgcVarioBlocks none({}, {}, {}, 0.);
  const NgcVarioTask task = makeTask(calculator);
  NgcVarioSearch search(none, directionsOf(calculator), task);
  if (task.clouds)
    search.setClouds(
        NgcVarioClouds::newClouds(task, directionsOf(calculator), {&calculator.getStatistics()},
                                  calculator.getCloudParameters()),
        {});
  return search.makeSums();
}

void NgwVariogram::_checkBuffers(const NbdAData &first, const NbdAData &second) const
{
  const NbdDataTable &a = first.getDataTableConst();
  const NbdDataTable &b = second.getDataTableConst();
  const QString &role = _calculator.getRoleV();
  if (_task.filtering != 0 && !a.hasRole(Nbd::Role::CODE))
    NBE_FAIL(QStringLiteral("Missing code variable (1)"));
  if (_task.filtering != 0 && !b.hasRole(Nbd::Role::CODE))
    NBE_FAIL(QStringLiteral("NgwVariogram::run: Missing code variable (2)"));
  if (b.getRoleCount(role) != a.getRoleCount(role))
    NBE_FAIL(QStringLiteral("Buffers inconsistency (1)"));
  if (namesOf(a, role) != namesOf(b, role))
    NBE_FAIL(QStringLiteral("Buffers inconsistency (2)"));
  if (a.hasRole(Nbd::Role::WEIGHT) && !b.hasRole(Nbd::Role::WEIGHT))
    NBE_FAIL(QStringLiteral("Buffers inconsistency (3)"));
  if (a.hasRole(Nbd::Role::MASK) && !b.hasRole(Nbd::Role::MASK))
    NBE_FAIL(QStringLiteral("Buffers inconsistency (4)"));
}

// Fills all but the positions, and returns which samples take part in pairs.
std::vector<unsigned char> NgwVariogram::_readSamples(const NgcPairwiseSamples &all,
                                                      NgcVarioSamples &samples) const
{
  const int n = all.count();
  std::vector<unsigned char> isValid(n, 0);
  for (int v = 0; v < _task.nVariables; ++v) {
    samples.values.push_back(all.read(_calculator.getRoleV(), v));
    for (int i = 0; i < n; ++i)
      isValid[i] |= !std::isnan(samples.values[v][i]) && all.isPlaced(i);
  }
  if (all.getRoleCount(Nbd::Role::WEIGHT) > 0) {
    samples.weights = all.read(Nbd::Role::WEIGHT);
    for (int i = 0; i < n; ++i)
      isValid[i] &= samples.weights[i] > 0.;
  }
  if (all.getRoleCount(Nbd::Role::MASK) > 0) {
    const std::vector<double> mask = all.read(Nbd::Role::MASK);
    if (samples.weights.empty())
      samples.weights.assign(n, 1.);
    for (int i = 0; i < n; ++i) {
      isValid[i] &= mask[i] != 1.;
      // An undefined mask does not mask.
      samples.weights[i] *= std::isnan(mask[i]) ? 1. : 1. - mask[i];
    }
  }
  if (_task.filtering != 0) {
    for (const double code : all.read(Nbd::Role::CODE))
      samples.codes.push_back(std::isnan(code) ? NbbGlobal::I32_FFFF : int(code));
  }
  return isValid;
}

void NgwVariogram::_process(const NgdDataDoubleBuffer &buffers)
{
  _checkBuffers(*buffers.getBuffer1(), *buffers.getBuffer2());
  NgcPairwiseSamples all(buffers, _calculator);
  NgcVarioSamples samples;
  samples.x = all.getAxis(0);
  samples.y = all.getAxis(1);
  samples.z = all.getAxis(2);
  samples.numbers = all.getNumbers();
  const std::vector<int> order = all.makeChunks(_readSamples(all, samples));
  samples = samples.ordered(order);
  std::vector<NgcVarioBlocks::Block> blocks;
  for (const NgcPairwiseSamples::Chunk &chunk : all.getChunks())
    blocks.push_back({chunk.first, chunk.last, 0., 0.});
  const int axis = _calculator.getSortedDimension();
  std::vector<double> along = axis == 0 ? samples.x : axis == 1 ? samples.y : samples.z;
  const NgcVarioBlocks sorted(std::move(samples), std::move(blocks), std::move(along),
                              _calculator.getVarioExp().getMaximumDistance());

  NgcVarioSearch search(sorted, directionsOf(_calculator), _task);
  search.setExclusive(_isExclusive);
  search.setClouds(_clouds, _means);
  NgcVarioSearch::Workspace workspace(search);
  all.forEachPairOfChunks([&](int i, int j) {
    _calculator._checkForProgressStop();
    auto partial = std::make_unique<NgaVarioSumList>(search.makeSums());
    search.processPair(i, j, workspace, *partial);
    _calculator.saveChunks(all.getChunks()[i].rank, all.getChunks()[j].rank, std::move(partial));
  });
}
