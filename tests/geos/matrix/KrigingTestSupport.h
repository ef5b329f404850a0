#pragma once

#include "MatrixTestSupport.h"
#include "basic/base/NbbGlobal.h"
#include "geos/matrix/NgmKrigingSamples.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/CsvFile.h"

#include <vector>

namespace testsupport {

/// Of reference values that were computed twice and agree so far.
constexpr double REFERENCE = 1e-12;

/// Samples with the arrays that hold them.
class Samples
{
public:
  Samples(std::vector<double> x, std::vector<double> y, std::vector<std::vector<double>> values)
      : _x(std::move(x)), _y(std::move(y)), _z(_x.size(), 0.), _values(std::move(values))
  {
    for (const std::vector<double> &variable : _values)
      _pointers.push_back(variable.data());
  }
  Samples(const Samples &) = delete;
  Samples &operator=(const Samples &) = delete;

  operator NgmKrigingSamples() const
  {
    NgmKrigingSamples samples;
    samples.n = int(_x.size());
    samples.x = _x.data();
    samples.y = _y.data();
    samples.z = _z.data();
    samples.values = _pointers.data();
    return samples;
  }

  int n() const { return int(_x.size()); }
  const std::vector<double> &x() const { return _x; }
  const std::vector<double> &y() const { return _y; }
  std::vector<double> &values(int v) { return _values[std::size_t(v)]; }

private:
  std::vector<double> _x;
  std::vector<double> _y;
  std::vector<double> _z;
  std::vector<std::vector<double>> _values;
  std::vector<const double *> _pointers;
};

inline std::vector<double> uniformVector(std::uint64_t stream, int n, double low, double high)
{
  std::vector<double> values(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i)
    values[std::size_t(i)] = uniform(stream, std::uint64_t(i), low, high);
  return values;
}

/// n samples in a square of side 1000 with `nVariables` uniform variables.
inline Samples randomSamples(std::uint64_t stream, int n, int nVariables = 1)
{
  std::vector<std::vector<double>> values;
  for (int v = 0; v < nVariables; ++v)
    values.push_back(uniformVector(stream + 2 + std::uint64_t(v), n, 1., 2.));
  return Samples(uniformVector(stream, n, 0., 1000.), uniformVector(stream + 1, n, 0., 1000.),
                 values);
}

inline NgmVModel sphericalModel(const NgmMatrix &nugget, const NgmMatrix &sill, double range)
{
  NgmVModel model(nugget.getNRows());
  model.setNuggetMatrix(nugget);
  model.addStructure(QStringLiteral("Spherical"), sill);
  model.setRangeIsotropic(0, range);
  return model;
}

/// Nugget 0.05 and spherical 0.59 of range 897.
inline NgmVModel meuseModel()
{
  return sphericalModel(matrixOf(1, 1, {0.05}, true), matrixOf(1, 1, {0.59}, true), 897.);
}

/// Without nugget, so that two samples at one place make the system singular.
inline NgmVModel continuousModel()
{
  return sphericalModel(matrixOf(1, 1, {0.}, true), matrixOf(1, 1, {1.}, true), 897.);
}

inline NgmVModel meuseCoregionalization()
{
  return sphericalModel(matrixOf(2, 2, {0.0561, 0.0443, 0.0443, 0.0479}, true),
                        matrixOf(2, 2, {0.5826, 0.5291, 0.5291, 0.5014}, true), 897.);
}

inline std::vector<double> logarithms(const std::vector<double> &values)
{
  std::vector<double> logs;
  for (double value : values)
    logs.push_back(std::log(value));
  return logs;
}

}  // namespace testsupport
