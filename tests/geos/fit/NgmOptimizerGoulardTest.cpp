#include "geos/fit/NgmOptimizerGoulard.h"

#include <gtest/gtest.h>

#include "geos/base/NgcACalculator.h"
#include "geos/fit/NgmVModelAutoFitting.h"
#include "geos/fit/NgmVModelOptimizable.h"
#include "support/Errors.h"
#include "support/FitCases.h"

#include <algorithm>

using namespace fitcases;
using testsupport::uniform;
using Model = NgmVModelToBeOptimized;

namespace {

/// A fit of sills and what came of it.
struct SillFit
{
  explicit SillFit(const NgmVariogramExpData &data, Model request, const NgmMatrix &variances,
                   int nbMaxIteration = 1000)
  {
    NgcACalculator::initMKLThreading();  // threads cost more than such small products
    request.setFitSillsOnly(true);
    optimizable.setVariogramExp(data, NgmEVarioExp::VARIOGRAM);
    optimizable.setInitialModel(request);
    optimizable.setVarianceCovarianceMatrix(variances);
    optimizer.setOptimizable(&optimizable, false);
    optimizer.setNbMaxIteration(nbMaxIteration);
    optimizer.runOptimizer(true);
    EXPECT_TRUE(optimizer.isCompleted()) << qPrintable(optimizer.getErrorMessage());
    optimizable.getExperience(values);
    optimizable.getWeights(weights);
    curves.resize(optimizable.getNStructuresToFit());
    for (int k = 0; k < curves.size(); ++k) {
      optimizable.getCova(k, curves[k]);
      sills << optimizable.getSills(k);
    }
  }

  /// The criterion of other sills.
  double score(const QVector<NgmMatrix> &others) const
  {
    double sum = 0.;
    for (int i = 0; i < others.first().getNRows(); ++i) {
      for (int j = 0; j <= i; ++j) {
        const int row = NgmVModelOptimizable::combineVariables(i, j);
        for (int lag = 0; lag < values.getNColumns(); ++lag) {
          double residual = values(row, lag);
          for (int k = 0; k < curves.size(); ++k)
            residual -= others[k](i, j) * curves[k](row, lag);
          sum += (i == j ? 0.5 : 1.) * weights(row, lag) * residual * residual;
        }
      }
    }
    return sum;
  }

  /// Half its gradient, as full symmetric matrices, and a bound of its curvature.
  QVector<NgmMatrix> halfGradient(const QVector<NgmMatrix> &at) const
  {
    QVector<NgmMatrix> gradient = at;
    for (int k = 0; k < curves.size(); ++k) {
      for (int i = 0; i < at[k].getNRows(); ++i) {
        for (int j = 0; j <= i; ++j) {
          const int row = NgmVModelOptimizable::combineVariables(i, j);
          double sum = 0.;
          for (int lag = 0; lag < values.getNColumns(); ++lag) {
            double residual = values(row, lag);
            for (int l = 0; l < curves.size(); ++l)
              residual -= at[l](i, j) * curves[l](row, lag);
            sum -= weights(row, lag) * residual * curves[k](row, lag);
          }
          gradient[k].setElement(i, j, sum);
        }
      }
    }
    return gradient;
  }

  double curvature() const
  {
    double largest = 0.;
    for (int row = 0; row < values.getNRows(); ++row) {
      double sum = 0.;
      for (const NgmMatrix &curve : curves) {
        for (int lag = 0; lag < values.getNColumns(); ++lag)
          sum += weights(row, lag) * curve(row, lag) * curve(row, lag);
      }
      largest = std::max(largest, sum);
    }
    return largest;
  }

  NgmVModelOptimizable optimizable;
  NgmOptimizerGoulard optimizer;
  NgmMatrix values, weights;
  QVector<NgmMatrix> curves, sills;
};

/// Nugget, short and long structure.
NgmVModel truthOf(int nVariables, std::uint64_t seed)
{
  NgmVModel model = emptyModel(nVariables);
  model.setNuggetMatrix(randomSills(nVariables, seed + 1));
  model.addStructure(QStringLiteral("Spherical"), randomSills(nVariables, seed + 2));
  model.addStructure(QStringLiteral("Exponential"), randomSills(nVariables, seed + 3));
  model.setRanges(0, NbgVector3D(40., 30., 1.));
  model.setRanges(1, NbgVector3D(130., 90., 1.));
  return model;
}

/// The same ranges with unit sills.
Model requestOf(const NgmVModel &truth)
{
  Model request(truth);
  NgmMatrix unit(truth.getNVariables(), truth.getNVariables(), true);
  unit.fill(0.);
  for (int i = 0; i < truth.getNVariables(); ++i)
    unit.setElement(i, i, truth.getC00Matrix()(i, i) / 3.);
  request.setNuggetMatrix(unit);
  request.setCoregionalisationMatrix(0, unit);
  request.setCoregionalisationMatrix(1, unit);
  return request;
}

void expectAdmissible(const NgmMatrix &sills)
{
  NgmMatrix eigenvalues(false), vectors(false);
  const double largest = sills.eigenValues(eigenvalues, vectors, true, true, 1);
  EXPECT_GE(eigenvalues(0, 0), -1e-14 * std::max(1., largest));
}

double total(const SillFit &fit, int i)
{
  double sum = 0.;
  for (const NgmMatrix &sills : fit.sills)
    sum += sills(i, i);
  return sum;
}

/// Least squares with sills >= 0 by trying every set of structures that stay at 0.
double bestOfOneVariable(const SillFit &fit)
{
  QVector<NgmMatrix> candidate = fit.sills;
  double best = 1e300;
  for (int set = 0; set < (1 << fit.curves.size()); ++set) {
    // Coordinate descent to the last digit within the set; it is convex.
    for (NgmMatrix &sill : candidate)
      sill.fill(0.);
    for (int round = 0; round < 3000; ++round) {
      const QVector<NgmMatrix> before = candidate;
      for (int k = 0; k < candidate.size(); ++k) {
        if (!(set & (1 << k)))
          continue;
        double numerator = 0., denominator = 0.;
        for (int lag = 0; lag < fit.values.getNColumns(); ++lag) {
          double residual = fit.values(0, lag);
          for (int l = 0; l < candidate.size(); ++l)
            residual -= l == k ? 0. : candidate[l](0, 0) * fit.curves[l](0, lag);
          numerator += fit.weights(0, lag) * residual * fit.curves[k](0, lag);
          denominator += fit.weights(0, lag) * fit.curves[k](0, lag) * fit.curves[k](0, lag);
        }
        candidate[k].setElement(0, 0, std::max(0., numerator / denominator));
      }
      double change = 0.;
      for (int k = 0; k < candidate.size(); ++k)
        change = std::max(change, std::fabs(candidate[k](0, 0) - before[k](0, 0)));
      if (change < 1e-10)
        break;
    }
    best = std::min(best, fit.score(candidate));
  }
  return best;
}

/// Projected gradient of the whole problem, which is convex, from the sills to be improved.
double bestOfSeveralVariables(const SillFit &fit)
{
  QVector<NgmMatrix> sills = fit.sills;
  const double step = 1. / fit.curvature();
  double best = fit.score(sills);
  for (int round = 0; round < 1500; ++round) {
    const QVector<NgmMatrix> gradient = fit.halfGradient(sills);
    for (int k = 0; k < sills.size(); ++k) {
      sills[k] = sills[k] - gradient[k] * step;
      sills[k].makePositiveDefinite(true, false, 1e-15);
    }
    best = std::min(best, fit.score(sills));
  }
  return best;
}

}  // namespace

// Without noise the criterion decreases to 0 until its changes are within the rounding.
TEST(NgmOptimizerGoulard, FindsTheSillsOfKnownModels)
{
  for (int nVariables = 1; nVariables <= 4; ++nVariables) {
    for (int seed = 0; seed < 5; ++seed) {
      const NgmVModel truth = truthOf(nVariables, std::uint64_t(1000 * nVariables + 10 * seed));
      const Layout layout = inPlane(2);
      const SillFit fit(dataOf(truth, layout), requestOf(truth), truth.getC00Matrix());
      const NgmVModel model = fit.optimizable.getOptimizedModel();
      EXPECT_LT(largestDifference(truth, model, layout), 1e-4) << nVariables << " " << seed;
      EXPECT_TRUE(
          (model.getNuggetMatrix() - truth.getNuggetMatrix()).isNull(2e-3 * truth.getC0IJ(0, 0)))
          << nVariables << " " << seed;
      for (const NgmMatrix &sills : fit.sills)
        expectAdmissible(sills);
    }
  }
}

// Steps below 1e-8 of the criterion end the descent: some 1e-6 may be left. Cross variograms have
// other numbers of pairs, so that weights differ between pairs of variables.
TEST(NgmOptimizerGoulard, IsAsGoodAsAnExhaustiveSearch)
{
  for (int seed = 0; seed < 16; ++seed) {
    const int nVariables = seed < 10 ? 1 : seed < 13 ? 2 : 3;
    const NgmVModel truth = truthOf(nVariables, std::uint64_t(100 * seed + 7));
    NgmVariogramExpData data = dataOf(truth, inPlane(2, 8), 0.1, std::uint64_t(seed));
    const long long counts[] = {3, 900, 30, 400, 5, 20, 600, 10};
    for (int i = 1; i < nVariables; ++i)
      data.setNumberOfPairs(0, false, i, 0, 8, counts);
    const SillFit fit(data, requestOf(truth), truth.getC00Matrix());
    const double best = nVariables == 1 ? bestOfOneVariable(fit) : bestOfSeveralVariables(fit);
    EXPECT_NEAR(fit.score(fit.sills), fit.optimizer.getScore(), 1e-12);
    EXPECT_NEAR(fit.optimizer.getGOF(), 2. * fit.optimizer.getScore(), 1e-18);
    EXPECT_TRUE(fit.optimizer.hasConverged());
    EXPECT_LE(fit.optimizer.getScore(), best * (1. + 1e-5)) << seed;
    for (const NgmMatrix &sills : fit.sills)
      expectAdmissible(sills);
  }
}

TEST(NgmOptimizerGoulard, KeepsWhatIsLockedOrDoesNotShow)
{
  const NgmVModel truth = truthOf(2, 5);
  const NgmVariogramExpData data = dataOf(truth, inPlane(2), 0.05, 3);
  Model request = requestOf(truth);
  const NgmMatrix known = truth.getCoregionalisationMatrix(0) * 0.9;
  request.setKnownSill(0, known);
  const SillFit fit(data, request, truth.getC00Matrix());
  const NgmMatrix kept = fit.optimizable.getOptimizedModel().getCoregionalisationMatrix(0);
  EXPECT_TRUE((kept - known).isNull(1e-12));
  EXPECT_NEAR(fit.score(fit.sills), fit.optimizer.getScore(), 1e-12);

  // A range beyond all lags: the curve is too small to move the sill.
  Model far = requestOf(truth);
  far.addStructure(QStringLiteral("Gaussian"), NgmMatrix(2, 2, true));
  far.setCoregionalisationMatrix(2, known);
  far.setRangeIsotropic(2, 1e6);
  const SillFit unseen(data, far, truth.getC00Matrix());
  const NgmMatrix same = unseen.optimizable.getOptimizedModel().getCoregionalisationMatrix(2);
  EXPECT_TRUE((same - known).isNull(1e-12));
}

// Totals of all variables, or of one; exact curves, and noise.
TEST(NgmOptimizerGoulard, KeepsTotalSills)
{
  for (int seed = 0; seed < 24; ++seed) {
    const int nVariables = 1 + seed % 4;
    const bool isExact = seed % 8 < 4;
    const NgmVModel truth = truthOf(nVariables, std::uint64_t(31 * seed + 2));
    const Layout layout = inPlane(2);
    const NgmMatrix variances = truth.getC00Matrix();
    Model request = requestOf(truth);
    QVector<double> totals;
    for (int i = 0; i < nVariables; ++i) {
      const bool isFree = i > 0 && seed % 3 == 0;
      const double factor = isExact ? 1. : uniform(std::uint64_t(seed), std::uint64_t(i), 0.6, 1.4);
      totals << (isFree ? NbbGlobal::D_FFFF : factor * variances(i, i));
      request.setSillCumulativeConstraint(i, totals[i]);
    }
    const NgmVariogramExpData data = dataOf(truth, layout, isExact ? 0. : 0.1, std::uint64_t(seed));
    const SillFit fit(data, request, variances);
    const NgmMatrix sum = fit.optimizable.getOptimizedModel().getC00Matrix();
    for (int i = 0; i < nVariables; ++i) {
      if (NbbGlobal::isDefined(totals[i])) {
        EXPECT_NEAR(sum(i, i) / totals[i], 1., 1e-12) << seed;
      }
    }
    for (const NgmMatrix &sills : fit.sills)
      expectAdmissible(sills);
    EXPECT_NEAR(fit.score(fit.sills), fit.optimizer.getScore(), 1e-12);
    if (isExact) {
      EXPECT_LT(largestDifference(truth, fit.optimizable.getOptimizedModel(), layout), 1e-3)
          << seed;
    }
  }
}

// What is known counts; nothing else is left when it takes all.
TEST(NgmOptimizerGoulard, TotalsHoldWithLockedStructures)
{
  const NgmVModel truth = truthOf(2, 61);
  const NgmVariogramExpData data = dataOf(truth, inPlane(2), 0.1);
  const NgmMatrix known = truth.getCoregionalisationMatrix(1);
  for (double factor : {3., 1.2, 1.}) {
    Model request = requestOf(truth);
    request.setKnownSill(1, known);
    request.setSillCumulativeConstraint(0, factor * known(0, 0));
    const SillFit fit(data, request, truth.getC00Matrix());
    const NgmVModel model = fit.optimizable.getOptimizedModel();
    EXPECT_TRUE((model.getCoregionalisationMatrix(1) - known).isNull(1e-12));
    EXPECT_NEAR(model.getC0IJ(0, 0) / (factor * known(0, 0)), 1., 1e-12);
    EXPECT_GT(model.getNugget(1, 1) + model.getCoregionalisationMatrix(0)(1, 1), 0.);
    for (const NgmMatrix &sills : fit.sills)
      expectAdmissible(sills);
  }

  Model request = requestOf(truth);
  request.setKnownSill(1, known);
  request.setSillCumulativeConstraint(0, 0.9 * known(0, 0));
  request.setFitSillsOnly(true);
  NgmVModelAutoFitting fitting;
  fitting.setVariogramExp(data, NgmEVarioExp::VARIOGRAM);
  fitting.setInitialModel(request);
  fitting.setVarianceCovarianceMatrix(truth.getC00Matrix());
  fitting.fit(true);
  EXPECT_EQ(fitting.getErrorMessage(),
            QStringLiteral("The known sills of variable 1 exceed its total sill"));
}

// One variable: all shares of the total on a grid. Two: shares and correlations of two structures.
TEST(NgmOptimizerGoulard, IsAsGoodAsASearchOfShares)
{
  for (int seed = 0; seed < 6; ++seed) {
    const NgmVModel truth = truthOf(1, std::uint64_t(seed));
    Model request = requestOf(truth);
    request.setSillCumulativeConstraint(0, (0.8 + 0.1 * seed) * truth.getC0IJ(0, 0));
    const SillFit fit(dataOf(truth, inPlane(2, 8), 0.1, std::uint64_t(seed)), request,
                      truth.getC00Matrix());
    QVector<NgmMatrix> sills = fit.sills;
    double best = 1e300;
    for (int a = 0; a <= 100; ++a) {
      for (int b = 0; a + b <= 100; ++b) {
        sills[0].fill(total(fit, 0) * a / 100.);
        sills[1].fill(total(fit, 0) * b / 100.);
        sills[2].fill(total(fit, 0) * (100 - a - b) / 100.);
        best = std::min(best, fit.score(sills));
      }
    }
    EXPECT_LE(fit.optimizer.getScore(), best * (1. + 1e-6)) << seed;
  }

  for (int seed = 0; seed < 3; ++seed) {
    const NgmVModel truth = truthOf(2, std::uint64_t(50 + seed));
    Model request = requestOf(truth);
    request.removeStructure(1);
    for (int i = 0; i < 2; ++i)
      request.setSillCumulativeConstraint(i, truth.getC0IJ(i, i));
    const SillFit fit(dataOf(truth, inPlane(1, 6), 0.1, std::uint64_t(seed)), request,
                      truth.getC00Matrix());
    QVector<NgmMatrix> sills = fit.sills;
    double best = 1e300;
    const int n = 12;
    const auto put = [&](int k, double first, double second, int correlation) {
      sills[k].setElement(0, 0, first);
      sills[k].setElement(1, 1, second);
      sills[k].setElement(1, 0, std::sqrt(first * second) * (2. * correlation / n - 1.));
    };
    for (int a = 0; a <= n; ++a) {
      for (int b = 0; b <= n; ++b) {
        for (int c = 0; c <= n; ++c) {
          for (int d = 0; d <= n; ++d) {
            put(0, total(fit, 0) * a / n, total(fit, 1) * b / n, c);
            put(1, total(fit, 0) * (n - a) / n, total(fit, 1) * (n - b) / n, d);
            best = std::min(best, fit.score(sills));
          }
        }
      }
    }
    EXPECT_LE(fit.optimizer.getScore(), best * (1. + 1e-6)) << seed;
  }
}

// Iterations that have not settled are not refined. With one variable and two structures the scale
// alone decides, and one of them is enough; with more variables the criterion goes down.
TEST(NgmOptimizerGoulard, ScalesMinimizeTheCriterion)
{
  for (int seed = 0; seed < 8; ++seed) {
    const NgmVModel truth = truthOf(1, std::uint64_t(seed));
    Model request = requestOf(truth);
    request.removeStructure(0);
    request.setSillCumulativeConstraint(0, (0.7 + 0.1 * seed) * truth.getC0IJ(0, 0));
    const SillFit fit(dataOf(truth, inPlane(2, 8), 0.1, std::uint64_t(seed)), request,
                      truth.getC00Matrix(), 1);
    ASSERT_FALSE(fit.optimizer.hasConverged());
    QVector<NgmMatrix> sills = fit.sills;
    double best = 1e300;
    for (int a = 0; a <= 1000; ++a) {
      sills[0].fill(total(fit, 0) * a / 1000.);
      sills[1].fill(total(fit, 0) * (1000 - a) / 1000.);
      best = std::min(best, fit.score(sills));
    }
    EXPECT_LE(fit.optimizer.getScore(), best * (1. + 1e-9)) << seed;
  }

  const NgmVModel truth = truthOf(3, 40);
  Model request = requestOf(truth);
  for (int i = 0; i < 3; ++i)
    request.setSillCumulativeConstraint(i, truth.getC0IJ(i, i));
  double before = 1e300;
  for (int n = 1; n <= 12; ++n) {
    const SillFit fit(dataOf(truth, inPlane(2)), request, truth.getC00Matrix(), n);
    ASSERT_FALSE(fit.optimizer.hasConverged());
    EXPECT_LT(fit.optimizer.getScore(), before) << n;
    before = fit.optimizer.getScore();
  }
}

// Sills of three structures as factors of one matrix.
TEST(NgmOptimizerGoulard, FindsIntrinsicModels)
{
  for (int nVariables = 1; nVariables <= 4; ++nVariables) {
    NgmVModel truth = truthOf(nVariables, 77);
    const NgmMatrix common = randomSills(nVariables, 78);
    truth.setNuggetMatrix(common * 0.2);
    truth.setCoregionalisationMatrix(0, common * 0.5);
    truth.setCoregionalisationMatrix(1, common * 0.9);
    Model request = requestOf(truth);
    request.setWantIntrinsic(true);
    const Layout layout = inPlane(2);
    const SillFit exact(dataOf(truth, layout), request, truth.getC00Matrix());
    EXPECT_LT(largestDifference(truth, exact.optimizable.getOptimizedModel(), layout), 1e-4)
        << nVariables;

    const SillFit noisy(dataOf(truth, layout, 0.2, 5), request, truth.getC00Matrix());
    for (const NgmMatrix &sills : noisy.sills) {
      expectAdmissible(sills);
      const double factor = sills(0, 0) / noisy.sills[2](0, 0);
      EXPECT_TRUE((sills - noisy.sills[2] * factor).isNull(1e-12)) << nVariables;
    }
    EXPECT_LT(noisy.optimizer.getScore(), noisy.score(exact.sills));
  }
}

// A locked structure says what the others are proportional to.
TEST(NgmOptimizerGoulard, IntrinsicModelFollowsALockedStructure)
{
  const NgmVModel truth = truthOf(2, 12);
  Model request = requestOf(truth);
  request.setWantIntrinsic(true);
  const NgmMatrix known = truth.getCoregionalisationMatrix(0);
  request.setKnownSill(0, known);
  const SillFit fit(dataOf(truth, inPlane(2)), request, truth.getC00Matrix());
  const NgmMatrix free = fit.optimizable.getOptimizedModel().getCoregionalisationMatrix(1);
  EXPECT_GT(free(0, 0), 0.);
  EXPECT_TRUE((free - known * (free(0, 0) / known(0, 0))).isNull(1e-12));
}

TEST(NgmOptimizerGoulard, RefusesOtherParameters)
{
  const NgmVModel truth = truthOf(1, 1);
  NgmVModelOptimizable optimizable;
  optimizable.setVariogramExp(dataOf(truth, inPlane(2)), NgmEVarioExp::VARIOGRAM);
  optimizable.setInitialModel(Model(truth));
  optimizable.setVarianceCovarianceMatrix(truth.getC00Matrix());
  NgmOptimizerGoulard optimizer;
  optimizer.setOptimizable(&optimizable, false);
  optimizer.runOptimizer(true);
  EXPECT_EQ(optimizer.getState(), NbcAProgress::FAILED);
  EXPECT_EQ(optimizer.getErrorMessage(),
            QStringLiteral("NgmOptimizerGoulard::_doRun: Goulard can only optimize Sills of a "
                           "Variogram Model"));

  Model locked(truth);
  for (int k = 0; k < 2; ++k)
    locked.setConstraint(Model::LOCKED, k, Model::STRUCT, 0, 0);
  locked.setFitNugget(false);
  const SillFit nothing(dataOf(truth, inPlane(2)), locked, truth.getC00Matrix());
  EXPECT_EQ(nothing.optimizer.getLogs(), QStringList(QStringLiteral("No parameters!")));
}

TEST(NgmOptimizerGoulard, SaysHowItWent)
{
  const NgmVModel truth = truthOf(2, 9);
  Model request = requestOf(truth);
  request.setSillCumulativeConstraint(0, 0.7 * truth.getC0IJ(0, 0));
  SillFit fit(dataOf(truth, inPlane(2), 0.1), request, truth.getC00Matrix(), 1);
  EXPECT_FALSE(fit.optimizer.hasConverged());
  EXPECT_EQ(fit.optimizer.getLogs(),
            QStringList(QStringLiteral("Warning: Fitting did not converge properly.")));

  fit.optimizer.setNbMaxIteration(500);
  fit.optimizer.setVerboseFlag(true);
  testsupport::PrintedMessages printed;
  fit.optimizer.runOptimizer(true);
  const QStringList logs = fit.optimizer.getLogs();
  ASSERT_GT(logs.size(), 5);
  EXPECT_EQ(logs[0], QStringLiteral("[Str-k(i-j) = Sill for structure 'k' for variables 'i' and "
                                    "'j']"));
  EXPECT_TRUE(logs[1].startsWith(QStringLiteral("  Iteration       Score  Stop Score  Str-1(1-1)")))
      << qPrintable(logs[1]);
  EXPECT_TRUE(logs[1].trimmed().endsWith(QStringLiteral("Str-3(2-2)")));
  const int nIterations = logs.size() - 5;
  EXPECT_EQ(logs[logs.size() - 3],
            QStringLiteral("Number of iterations                = %1/500").arg(nIterations));
  EXPECT_EQ(
      logs[logs.size() - 2],
      QStringLiteral("Value of minimized function (score) = %1").arg(fit.optimizer.getScore()));
  EXPECT_TRUE(logs.last().startsWith(QStringLiteral("Stopping Criterion                  = ")));
  const auto isTable = [](const QString &text) { return text.contains(QStringLiteral("Str-k")); };
  EXPECT_EQ(std::count_if(printed.texts.cbegin(), printed.texts.cend(), isTable), 1);
}

namespace {

/// Is asked to stop before it begins.
class StoppedGoulard : public NgmOptimizerGoulard
{
public:
  ~StoppedGoulard() override { _finish(); }

protected:
  bool _doOptimization(int nbMaxIteration) override
  {
    stop();
    return NgmOptimizerGoulard::_doOptimization(nbMaxIteration);
  }
};

}  // namespace

TEST(NgmOptimizerGoulard, KeepsTheSillsWhenInterrupted)
{
  const NgmVModel truth = truthOf(2, 9);
  SillFit fit(dataOf(truth, inPlane(2), 0.1), requestOf(truth), truth.getC00Matrix());
  StoppedGoulard stopped;
  stopped.setOptimizable(&fit.optimizable, false);
  stopped.runOptimizer(true);
  EXPECT_EQ(stopped.getState(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(stopped.getLogs(), QStringList(QStringLiteral("Optimization interrupted!")));
  const NgmMatrix start = requestOf(truth).getNuggetMatrix();
  EXPECT_TRUE((fit.optimizable.getOptimizedModel().getNuggetMatrix() - start).isNull(1e-12));
}

TEST(NgmVModelOptimizerFoxleg, ShowsTheFitsOfSills)
{
  NgcACalculator::initMKLThreading();
  const NgmVModel truth = truthOf(2, 21);
  NgmVModelAutoFitting fitting;
  fitting.setVariogramExp(dataOf(truth, inPlane(1)), NgmEVarioExp::VARIOGRAM);
  fitting.setInitialModel(Model(truth));
  fitting.setVarianceCovarianceMatrix(truth.getC00Matrix());
  const auto showsTable = [&fitting](bool show) {
    fitting.setShowGoulard(show);
    testsupport::PrintedMessages printed;
    fitting.fit(true);
    return printed.texts.join(QString()).contains(QStringLiteral("Str-1(2-1)"));
  };
  EXPECT_TRUE(showsTable(true));
  EXPECT_FALSE(showsTable(false));
}
