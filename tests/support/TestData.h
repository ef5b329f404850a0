#pragma once

#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderLineCoreW.h"
#include "basic/provider/NbpMemoryProviderLineW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "support/Random.h"

#include <QSharedPointer>

#include <cmath>
#include <vector>

/// Small data files in memory with reproducible values.
///
/// Coordinates come from the stream `seed`. Each file has the double variable "Z1", a smooth
/// function of the location (smoothValue()), and "Z2", standard normal noise of the stream
/// seed + 1.
namespace testsupport {

/// Uniform numbers of [low, high), every `stride`-th of a stream.
inline std::vector<double> uniformValues(std::uint64_t stream, qint64 n, double low, double high,
                                         int stride = 1, int offset = 0)
{
  std::vector<double> values(n);
  for (qint64 i = 0; i < n; ++i)
    values[i] = uniform(stream, stride * i + offset, low, high);
  return values;
}

inline std::vector<double> normalValues(std::uint64_t stream, qint64 n)
{
  std::vector<double> values(n);
  for (qint64 i = 0; i < n; ++i)
    values[i] = normal(stream, i);
  return values;
}

/// A smooth field of mean about 10 that varies over some hundred length units.
inline double smoothValue(double x, double y, double z)
{
  return 10. + std::sin(0.011 * x + 0.3) + std::cos(0.007 * y - 0.4) + 0.5 * std::sin(0.05 * z);
}

template <class Provider>
void addTestValues(Provider &provider, const std::vector<double> &x, const std::vector<double> &y,
                   const std::vector<double> &z, std::uint64_t seed)
{
  std::vector<double> smooth(x.size());
  for (std::size_t i = 0; i < x.size(); ++i)
    smooth[i] = smoothValue(x[i], y[i], z[i]);
  provider.addVariable(QStringLiteral("Z1"), std::move(smooth));
  provider.addVariable(QStringLiteral("Z2"), normalValues(seed + 1, qint64(x.size())));
}

/// Points uniform in [0, 1000) x [0, 1000) (x [0, 100) in three dimensions). With the default seed,
/// x and y are those of the shared benchmark points.
inline QSharedPointer<NbpMemoryProviderPointsW> makePoints(
    qint64 n, const NbgEDimension &dimension = NbgEDimension::DIM_2D, std::uint64_t seed = 20240601)
{
  auto provider = QSharedPointer<NbpMemoryProviderPointsW>::create(dimension, n);
  const std::vector<double> x = uniformValues(seed, n, 0., 1000., 2, 0);
  const std::vector<double> y = dimension.getNDim() > 1 ? uniformValues(seed, n, 0., 1000., 2, 1)
                                                        : std::vector<double>(n, 0.);
  const std::vector<double> z =
      dimension.is3D() ? uniformValues(seed + 2, n, 0., 100.) : std::vector<double>(n, 0.);
  provider->addXVariable(x);
  if (dimension.getNDim() > 1)
    provider->addYVariable(y);
  if (dimension.is3D())
    provider->addZVariable(z);
  addTestValues(*provider, x, y, z, seed);
  return provider;
}

/// Geometry of nx ny nz cells whose first centre is half a cell from the world's origin.
inline NbgGeomGrid makeGridGeometry(int nx, int ny, int nz, const NbgVector3D &cell)
{
  NbgGeomGrid geometry;
  geometry.setNodesNumber(nx, ny, nz);
  geometry.setCellSize(cell);
  geometry.setOriginCentered(NbgVector3D(0.5 * cell.x(), 0.5 * cell.y(), 0.5 * cell.z()));
  return geometry;
}

/// The same in the plane.
inline NbgGeomGrid makeGridGeometry2D(int nx, int ny, double dx, double dy)
{
  NbgGeomGrid geometry;
  geometry.setNodesNumber2D(nx, ny);
  geometry.setCellSize(NbgVector3D(dx, dy, 1.));
  geometry.setOriginCentered(NbgVector3D(0.5 * dx, 0.5 * dy, 0.));
  return geometry;
}

inline QSharedPointer<NbpMemoryProviderGridW> makeGrid(const NbgGeomGrid &geometry,
                                                       std::uint64_t seed = 31)
{
  auto provider = QSharedPointer<NbpMemoryProviderGridW>::create(geometry);
  const qint64 n = geometry.getGridSize();
  std::vector<double> x(n), y(n), z(n);
  geometry.getCoordinates(geometry.getIJKIntervals(), x.data(), y.data(), z.data());
  addTestValues(*provider, x, y, z, seed);
  return provider;
}

/// A grid of 10 m x 10 m x 5 m cells.
inline QSharedPointer<NbpMemoryProviderGridW> makeGrid(int nx, int ny, int nz,
                                                       std::uint64_t seed = 31)
{
  return makeGrid(makeGridGeometry(nx, ny, nz, NbgVector3D(10., 10., 5.)), seed);
}

/// A grid in the plane of 10 m x 10 m cells.
inline QSharedPointer<NbpMemoryProviderGridW> makeGrid2D(int nx, int ny, std::uint64_t seed = 31)
{
  return makeGrid(makeGridGeometry2D(nx, ny, 10., 10.), seed);
}

/// Coordinates of vertical lines: collars uniform in [0, 1000) x [0, 1000) at elevation 0, samples
/// one length unit apart, the first half a unit down.
struct TestLines
{
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;
  std::vector<double> depth;  ///< of the middle of each sample

  TestLines(const std::vector<int> &nSamplesPerLine, std::uint64_t seed)
  {
    for (std::size_t line = 0; line < nSamplesPerLine.size(); ++line) {
      for (int s = 0; s < nSamplesPerLine[line]; ++s) {
        x.push_back(uniform(seed, 2 * line, 0., 1000.));
        y.push_back(uniform(seed, 2 * line + 1, 0., 1000.));
        z.push_back(-(s + 0.5));
        depth.push_back(s + 0.5);
      }
    }
  }
};

/// Points along vertical lines.
inline QSharedPointer<NbpMemoryProviderLineW> makeLines(const std::vector<int> &nSamplesPerLine,
                                                        std::uint64_t seed = 57)
{
  auto provider =
      QSharedPointer<NbpMemoryProviderLineW>::create(NbgEDimension::DIM_3D, nSamplesPerLine);
  const TestLines lines(nSamplesPerLine, seed);
  provider->addXVariable(lines.x);
  provider->addYVariable(lines.y);
  provider->addZVariable(lines.z);
  addTestValues(*provider, lines.x, lines.y, lines.z, seed);
  return provider;
}

/// Contiguous cores of one length unit along vertical lines.
inline QSharedPointer<NbpMemoryProviderLineCoreW> makeCores(const std::vector<int> &nSamplesPerLine,
                                                            std::uint64_t seed = 57)
{
  auto provider =
      QSharedPointer<NbpMemoryProviderLineCoreW>::create(NbgEDimension::DIM_3D, nSamplesPerLine);
  const TestLines lines(nSamplesPerLine, seed);
  std::vector<double> from(lines.depth), to(lines.depth);
  for (std::size_t i = 0; i < from.size(); ++i) {
    from[i] -= 0.5;
    to[i] += 0.5;
  }
  provider->addXVariable(lines.x);
  provider->addYVariable(lines.y);
  provider->addZVariable(lines.z);
  provider->addSFromVariable(std::move(from));
  provider->addSToVariable(std::move(to));
  addTestValues(*provider, lines.x, lines.y, lines.z, seed);
  return provider;
}

}  // namespace testsupport
