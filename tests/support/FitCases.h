#pragma once

#include "basic/geom/NbgVector3D.h"
#include "geos/fit/NgmVModelToBeOptimized.h"
#include "geos/stats/NgmVariogramExpData.h"
#include "geos/vmodel/NgmAVStruct.h"

#include "support/Random.h"

#include <cmath>
#include <vector>

/// Experimental variograms made from a model, and models to make them from.
namespace fitcases {

struct Layout
{
  std::vector<NbgVector3D> directions;
  int nLags = 15;
  double lag = 10.;
};

inline NbgVector3D horizontal(double degrees)
{
  const double angle = degrees * 0.017453292519943295;
  return NbgVector3D(std::cos(angle), std::sin(angle), 0.);
}

inline Layout inPlane(int nDirections, int nLags = 15, double lag = 10.)
{
  Layout layout{{}, nLags, lag};
  for (int d = 0; d < nDirections; ++d)
    layout.directions.push_back(horizontal(180. * d / nDirections));
  return layout;
}

/// Curves of the model, times 1 + noise * normal numbers of that stream.
inline NgmVariogramExpData dataOf(const NgmVModel &model, const Layout &layout, double noise = 0.,
                                  std::uint64_t stream = 1)
{
  const int n = model.getNVariables();
  NgmVariogramExpData data;
  data.setNVariables(n);
  for (const NbgVector3D &direction : layout.directions)
    data.addDirectionVector(direction, layout.nLags, QStringLiteral("D"));
  data.createStandardTables();
  std::uint64_t counter = 0;
  for (int d = 0; d < int(layout.directions.size()); ++d) {
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j <= i; ++j) {
        std::vector<double> distances, values;
        std::vector<long long> counts;
        for (int k = 0; k < layout.nLags; ++k) {
          distances.push_back((k + 1) * layout.lag);
          counts.push_back(400 - 10 * k);
          NbgVector3D h = data.getDirectionVector(d);
          h *= distances.back();
          values.push_back(model.calcVarioIJ(i, j, h) *
                           (1. + noise * testsupport::normal(stream, counter++)));
        }
        data.setDistances(d, false, i, j, layout.nLags, distances.data());
        data.setNumberOfPairs(d, false, i, j, layout.nLags, counts.data());
        data.setVarioValues(d, NgmEVarioExp::EValue::VARIOGRAM, i, j, layout.nLags, values.data());
      }
    }
  }
  return data;
}

/// The largest difference of two models at the lags, in units of the sills of the first.
inline double largestDifference(const NgmVModel &a, const NgmVModel &b, const Layout &layout)
{
  double largest = 0.;
  for (const NbgVector3D &direction : layout.directions) {
    for (int k = 1; k <= layout.nLags; ++k) {
      NbgVector3D h = direction;
      h *= k * layout.lag;
      for (int i = 0; i < a.getNVariables(); ++i) {
        for (int j = 0; j <= i; ++j)
          largest = std::max(largest, std::fabs(a.calcVarioIJ(i, j, h) - b.calcVarioIJ(i, j, h)) /
                                          std::sqrt(a.getC0IJ(i, i) * a.getC0IJ(j, j)));
      }
    }
  }
  return largest;
}

/// Positive definite: a a' of random rows, with larger diagonal elements.
inline NgmMatrix randomSills(int n, std::uint64_t seed)
{
  NgmMatrix a(n, n, false);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j)
      a.setElement(i, j, testsupport::normal(seed, std::uint64_t(i * n + j)));
  }
  NgmMatrix sills(n, n, true);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j <= i; ++j) {
      double sum = i == j ? 0.3 : 0.;
      for (int k = 0; k < n; ++k)
        sum += a(i, k) * a(j, k);
      sills.setElement(i, j, sum);
    }
  }
  return sills;
}

inline NgmVModel emptyModel(int nVariables, int nDimensions = 2)
{
  NgmVModel model(nVariables);
  model.setContextNDim(nDimensions);
  return model;
}

/// The same structures, nothing else known: what a plain request is.
inline NgmVModelToBeOptimized plainRequest(const NgmVModel &model)
{
  NgmVModelToBeOptimized request(model.getNVariables());
  request.setContext(model.getContext());
  for (int k = 0; k < model.getNStructures(); ++k)
    request.addStructure(model.getStructureLabel(k));
  return request;
}

}  // namespace fitcases
