// Kriging of blocks, super kriging and direct block kriging.

#include "KrigingStudy.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmBlockUnfolded.h"

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

constexpr int nData = 30;
constexpr int nTargets = 12;

Study makeStudy(const QStringList &outputs = {Nbd::Role::V, Nbd::Role::VARIANCE})
{
  Study study(randomPlaces(31, nData, 100.), randomPlaces(32, nTargets, 100.));
  study.addData(Nbd::Role::V, QStringLiteral("z"), randomValues(33, nData, 5.));
  study.addOutputs(outputs);
  return study;
}

NgmBlock makeBlock(double u, double v)
{
  NgmBlock block(false);
  block.setSize(NbgVector3D(u, v, 0.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(3, 3, 1));
  return block;
}

NgmVModel makeModel(double nugget = 0.)
{
  return sphericalModel(nugget, 1., NbgVector3D(50., 50., 50.));
}

using Configure = std::function<void(NgcKriging &)>;

void krige(const Study &study, bool moving, const Configure &configure)
{
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setVarioModel(makeModel());
  if (moving)
    kriging.setUsingMovingNeighborhood(nearestSamples(nData));
  else
    kriging.setUsingUniqueNeighborhood();
  configure(kriging);
  study.krige(kriging);
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 0);
}

}  // namespace

TEST(NgcKrigingBlocks, TendToPointsAsTheyShrink)
{
  for (const bool moving : {true, false}) {
    const Study points = makeStudy();
    krige(points, moving, [](NgcKriging &) {});
    double before = 10.;
    for (const double size : {10., 1., 0.001}) {
      const Study blocks = makeStudy();
      krige(blocks, moving,
            [size](NgcKriging &kriging) { kriging.setSupportBlock(makeBlock(size, size)); });
      double largest = 0.;
      for (int t = 0; t < nTargets; ++t) {
        const std::size_t target = std::size_t(t);
        largest = std::max(
            largest, std::abs(blocks.get(Nbd::Role::V)[target] - points.get(Nbd::Role::V)[target]));
        largest = std::max(largest, std::abs(blocks.get(Nbd::Role::VARIANCE)[target] -
                                             points.get(Nbd::Role::VARIANCE)[target]));
      }
      EXPECT_LT(largest, 0.5 * before);
      before = largest;
    }
    EXPECT_LT(before, 1e-4);  // the covariance falls by 3e-5 over the block
  }
}

TEST(NgcKrigingBlocks, SizesMayVaryFromTargetToTarget)
{
  const double sizes[2][2] = {{20., 10.}, {5., 30.}};
  Values u, v;
  for (int t = 0; t < nTargets; ++t) {
    u.push_back(sizes[t % 2][0]);
    v.push_back(sizes[t % 2][1]);
  }
  for (const bool moving : {true, false}) {
    Study varying = makeStudy();
    varying.addTargetData(Nbd::Role::BLOCK_SIZE, QStringLiteral("u"), u);
    varying.addTargetData(Nbd::Role::BLOCK_SIZE, QStringLiteral("v"), v);
    krige(varying, moving, [](NgcKriging &kriging) {
      kriging.setSupportBlock(makeBlock(1., 1.));
      kriging.setSupportBlockVarSize(true);
    });
    for (std::size_t kind = 0; kind < 2; ++kind) {
      const Study fixed = makeStudy();
      krige(fixed, moving, [&](NgcKriging &kriging) {
        kriging.setSupportBlock(makeBlock(sizes[kind][0], sizes[kind][1]));
      });
      for (std::size_t t = kind; t < nTargets; t += 2) {
        EXPECT_EQ(varying.get(Nbd::Role::V)[t], fixed.get(Nbd::Role::V)[t]);
        EXPECT_EQ(varying.get(Nbd::Role::VARIANCE)[t], fixed.get(Nbd::Role::VARIANCE)[t]);
      }
    }
  }
}

TEST(NgcKrigingBlocks, AnUnfoldedCuboidIsABlock)
{
  const QString roles[] = {Nbd::Role::BLOCK_BOTSW, Nbd::Role::BLOCK_BOTSE, Nbd::Role::BLOCK_BOTNW,
                           Nbd::Role::BLOCK_BOTNE, Nbd::Role::BLOCK_TOPSW, Nbd::Role::BLOCK_TOPSE,
                           Nbd::Role::BLOCK_TOPNW, Nbd::Role::BLOCK_TOPNE};
  const Places centres = randomPlaces(32, nTargets, 100.);
  Study unfolded = makeStudy();
  for (int corner = 0; corner < 8; ++corner) {
    Values x, y, z;
    for (int t = 0; t < nTargets; ++t) {
      x.push_back(centres.x[std::size_t(t)] + (corner % 2 == 0 ? -10. : 10.));
      y.push_back(centres.y[std::size_t(t)] + (corner / 2 % 2 == 0 ? -5. : 5.));
      z.push_back(corner / 4 == 0 ? -1. : 1.);
    }
    const QString name = QStringLiteral("corner %1 %2").arg(corner);
    unfolded.addTargetData(roles[corner], name.arg(QStringLiteral("x")), x);
    unfolded.addTargetData(roles[corner], name.arg(QStringLiteral("y")), y);
    unfolded.addTargetData(roles[corner], name.arg(QStringLiteral("z")), z);
  }
  NgmBlockUnfolded cell(false);
  cell.setDiscretizationPointsNumber(NbgIntVector3D(3, 3, 1));
  krige(unfolded, true, [&cell](NgcKriging &kriging) {
    kriging.setSupportBlock(cell);
    kriging.setSupportBlockVarSize(true);
  });
  const Study regular = makeStudy();
  krige(regular, true, [](NgcKriging &kriging) { kriging.setSupportBlock(makeBlock(20., 10.)); });
  // Points of the discretization agree to rounding; corners are about 100 from the origin.
  expectEqual(unfolded.get(Nbd::Role::V), regular.get(Nbd::Role::V), 1e-11);
}

TEST(NgcKrigingBlocks, FilteredComponentsAreThoseOfTheBlock)
{
  // The nugget has no part in covariances of blocks: filtering it changes nothing.
  for (const bool moving : {true, false}) {
    const auto configure = [](bool filter) {
      return [filter](NgcKriging &kriging) {
        kriging.setVarioModel(makeModel(0.4));
        kriging.setSupportBlock(makeBlock(20., 10.));
        kriging.setFilterNugget(filter);
      };
    };
    const Study whole = makeStudy();
    krige(whole, moving, configure(false));
    const Study filtered = makeStudy();
    krige(filtered, moving, configure(true));
    expectEqual(filtered.get(Nbd::Role::V), whole.get(Nbd::Role::V), 1e-13);
    expectEqual(filtered.get(Nbd::Role::VARIANCE), whole.get(Nbd::Role::VARIANCE), 1e-13);
  }
}

TEST(NgcKrigingBlocks, SuperKrigingTellsThePrecisionOfTheBlock)
{
  Study study =
      makeStudy({Nbd::Role::V, Nbd::Role::VARIANCE, Nbd::Role::STDEV, NgcAKriging::getRoleSSDV(),
                 NgcAKriging::getRoleSpecificVolume(), NgcAKriging::getRoleCoeffOfVariation()});
  Study alone = makeStudy({NgcAKriging::getRoleSSDV()});
  const auto configure = [](NgcKriging &kriging) {
    kriging.setSupportBlock(makeBlock(20., 10.));
    kriging.setSuperKriging(true);
    kriging.setTheoreticalMean(4.);
    kriging.setProductionVolume(1000.);
  };
  krige(study, true, configure);
  krige(alone, true, configure);
  const Values variances = study.get(Nbd::Role::VARIANCE);
  for (std::size_t t = 0; t < variances.size(); ++t) {
    const double ssdv = variances[t] * 200.;
    EXPECT_DOUBLE_EQ(study.get(NgcAKriging::getRoleSSDV())[t], ssdv);
    EXPECT_DOUBLE_EQ(study.get(NgcAKriging::getRoleSpecificVolume())[t], ssdv / 16.);
    EXPECT_DOUBLE_EQ(study.get(NgcAKriging::getRoleCoeffOfVariation())[t],
                     std::sqrt(ssdv / 16. / 1000.));
  }
  EXPECT_EQ(alone.get(NgcAKriging::getRoleSSDV()), study.get(NgcAKriging::getRoleSSDV()));
}

TEST(NgcKrigingBlocks, DirectBlockKrigingWeighsASampleByItsSupport)
{
  // Simple kriging from one sample of two: w = r C(h) / C(0).
  const double r = 0.8;
  const NgmVModel model = makeModel();
  for (const bool moving : {true, false}) {
    Study study({{0., 1e4}, {0., 0.}}, {{20.}, {0.}});
    study.addData(Nbd::Role::V, QStringLiteral("z"), {1.5, 9.});
    study.addOutputs({Nbd::Role::V, Nbd::Role::VARIANCE});
    NgcKriging kriging(QStringLiteral("KRIGING"));
    kriging.setKrigingMode(NgcEKrigingMode::SIMPLE_KRIGING);
    kriging.setVarioModel(model);
    if (moving)
      kriging.setUsingMovingNeighborhood(nearestSamples(2));
    else
      kriging.setUsingUniqueNeighborhood();
    EXPECT_FALSE(kriging.isDirectBlock());
    kriging.setBlockCorrectionCoefficient(0, r);
    EXPECT_TRUE(kriging.isDirectBlock());
    study.krige(kriging);
    const double weight = r * model.calcCovaIJ(0, 0, NbgVector3D(20., 0., 0.));
    EXPECT_NEAR(study.get(Nbd::Role::V)[0], 1.5 * weight, 1e-14);
    EXPECT_NEAR(study.get(Nbd::Role::VARIANCE)[0], 1. - weight * weight, 1e-14);
  }
}
