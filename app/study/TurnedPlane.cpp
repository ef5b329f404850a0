#include "app/study/TurnedPlane.h"

#include <QString>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numeric>
#include <utility>

namespace orvenal {

namespace {

/// A point of the map.
using Point = std::complex<double>;

/// Places on the map, relative to the first one.
class Points
{
public:
  explicit Points(const std::vector<std::array<double, 3>> &places) : _places(places) {}

  std::size_t size() const { return _places.size(); }
  Point shift() const { return {_places.front()[0], _places.front()[1]}; }
  Point operator[](std::size_t i) const
  {
    return {_places[i][0] - _places.front()[0], _places[i][1] - _places.front()[1]};
  }

private:
  const std::vector<std::array<double, 3>> &_places;
};

constexpr double rounding = 1e-9;  // of the extent
constexpr double infinite = std::numeric_limits<double>::infinity();

/// A lattice of which one node is at `origin`; `u` and i `u` are the directions of its axes.
struct Lattice
{
  Point origin;
  Point u;  // of length 1
  double a = 0.;
  double b = 0.;

  Point local(const Point &point) const
  {
    const Point turned = (point - origin) * std::conj(u);
    return {turned.real() / a, turned.imag() / b};
  }
};

Point rounded(const Point &local)
{
  return {std::round(local.real()), std::round(local.imag())};
}

double distanceToNode(const Point &local)
{
  const Point rest = local - rounded(local);
  return std::max(std::abs(rest.real()), std::abs(rest.imag()));
}

double extentOf(const Points &points)
{
  double extent = 0.;
  for (std::size_t i = 0; i < points.size(); ++i)
    extent = std::max(extent, std::abs(points[i]));
  return extent;
}

/// Some of the points, from all over them.
std::vector<Point> someOf(const Points &points)
{
  constexpr std::size_t most = 24;
  std::vector<Point> some;
  for (std::size_t i = 0; i < most; ++i)
    some.push_back(points[i * points.size() / most]);
  return some;
}

/// The shortest step from one of some points to another point.
bool findShortestStep(const Points &points, const std::vector<Point> &some, double leastLength,
                      Lattice &lattice)
{
  double best = infinite;
  for (const Point &from : some) {
    for (std::size_t i = 0; i < points.size(); ++i) {
      const Point step = points[i] - from;
      const double length = std::norm(step);
      if (length < best && length > leastLength * leastLength) {
        best = length;
        lattice.origin = from;
        lattice.u = step;
      }
    }
  }
  lattice.a = std::sqrt(best);
  lattice.u /= lattice.a;
  return std::isfinite(best);
}

/// The distance to the next line of points along `u`; it is not below the shortest step.
bool findNextLine(const Points &points, const std::vector<Point> &some, Lattice &lattice)
{
  constexpr double window = 8.5;  // steps: farther, the direction is not precise enough
  lattice.b = infinite;
  for (const Point &from : some) {
    for (std::size_t i = 0; i < points.size(); ++i) {
      const Point step = (points[i] - from) * std::conj(lattice.u);
      const double across = std::abs(step.imag());
      if (across < lattice.b && across > 0.5 * lattice.a &&
          std::abs(step.real()) < window * lattice.a)
        lattice.b = across;
    }
  }
  return std::isfinite(lattice.b);
}

/// Slope and intercept of a line through points.
class Line
{
public:
  void add(double x, double y)
  {
    ++_n;
    const double dx = x - _x;
    _x += dx / _n;
    _y += (y - _y) / _n;
    _xx += dx * (x - _x);
    _xy += dx * (y - _y);
  }
  double slope(double fallback) const { return _xx > 0. ? _xy / _xx : fallback; }
  double at0(double slope) const { return _y - slope * _x; }

private:
  double _n = 0.;
  double _x = 0.;
  double _y = 0.;
  double _xx = 0.;
  double _xy = 0.;
};

/// Points and the nodes at which they are.
struct Matches
{
  std::vector<Point> points;
  std::vector<Point> nodes;
};

bool isNear(const Lattice &lattice, const Point &point, double nSteps)
{
  const Point local = lattice.local(point);
  return std::max(std::abs(local.real()), std::abs(local.imag())) <= nSteps;
}

/// Points at most so many steps from the lattice's origin, or some of them when they are very many;
/// false when one of them is between the nodes.
bool match(const Points &points, double nSteps, const Lattice &lattice, Matches &matches)
{
  constexpr double farthest = 0.25;  // cells
  constexpr std::size_t enough = 100000;
  std::size_t nNear = 0;
  for (std::size_t i = 0; i < points.size(); ++i)
    nNear += isNear(lattice, points[i], nSteps) ? 1 : 0;
  const std::size_t every = nNear / enough + 1;
  std::size_t rank = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!isNear(lattice, points[i], nSteps) || rank++ % every != 0)
      continue;
    const Point local = lattice.local(points[i]);
    if (distanceToNode(local) > farthest)
      return false;
    matches.points.push_back(points[i]);
    matches.nodes.push_back(rounded(local));
  }
  return true;
}

Point meanOf(const std::vector<Point> &points)
{
  return std::accumulate(points.begin(), points.end(), Point()) / double(points.size());
}

/// The direction that turns the nodes to their points.
void fitDirection(const Matches &matches, Lattice &lattice)
{
  const Point middle = meanOf(matches.points);
  const Point middleNode = meanOf(matches.nodes);
  Point turn;
  for (std::size_t i = 0; i < matches.nodes.size(); ++i) {
    const Point node = matches.nodes[i] - middleNode;
    turn += (matches.points[i] - middle) *
            std::conj(Point(lattice.a * node.real(), lattice.b * node.imag()));
  }
  lattice.u = turn / std::abs(turn);
}

/// Cells and origin for a direction.
void fitCells(const Matches &matches, Lattice &lattice)
{
  Line along, across;
  for (std::size_t i = 0; i < matches.nodes.size(); ++i) {
    const Point place = matches.points[i] * std::conj(lattice.u);
    along.add(matches.nodes[i].real(), place.real());
    across.add(matches.nodes[i].imag(), place.imag());
  }
  lattice.a = along.slope(lattice.a);
  lattice.b = across.slope(lattice.b);
  lattice.origin = Point(along.at0(lattice.a), across.at0(lattice.b)) * lattice.u;
}

bool refine(const Points &points, double nSteps, Lattice &lattice)
{
  constexpr int nRounds = 3;
  Matches matches;
  if (!match(points, nSteps, lattice, matches))
    return false;
  for (int round = 0; round < nRounds; ++round) {
    fitDirection(matches, lattice);
    fitCells(matches, lattice);
  }
  return lattice.a > 0. && lattice.b > 0.;
}

/// Step by step away from the origin, as precision grows; false when the points are no lattice.
bool refineOverAll(const Points &points, double extent, Lattice &lattice)
{
  constexpr double growth = 6.;
  const double nSteps = extent / std::min(lattice.a, lattice.b) + 1.;
  for (double n = 8.; n < growth * nSteps; n *= growth) {
    if (!refine(points, n, lattice))
      return false;
  }
  return true;
}

/// The number of the fewest digits that is as good.
double snapped(double value, double allowed)
{
  if (std::abs(value) <= allowed)
    return 0.;
  for (int digits = 1; digits < 17; ++digits) {
    const double candidate = QString::number(value, 'g', digits).toDouble();
    if (std::abs(candidate - value) <= allowed)
      return candidate;
  }
  return value;
}

/// Turns the axes so that the second one points north, within 45 degrees.
void turnNorth(Lattice &lattice)
{
  while (!(lattice.u.real() > 0. && std::abs(lattice.u.imag()) <= lattice.u.real())) {
    lattice.u *= Point(0., 1.);
    std::swap(lattice.a, lattice.b);
  }
}

/// Corners of the box around the points' local coordinates, and how far they are from nodes.
struct Span
{
  Point low{infinite, infinite};
  Point high{-infinite, -infinite};
  double distance = 0.;
};

Span spanOf(const Points &points, const Lattice &lattice)
{
  Span span;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point local = lattice.local(points[i]);
    span.distance = std::max(span.distance, distanceToNode(local));
    span.low = {std::min(span.low.real(), local.real()), std::min(span.low.imag(), local.imag())};
    span.high = {std::max(span.high.real(), local.real()),
                 std::max(span.high.imag(), local.imag())};
  }
  span.low = rounded(span.low);
  span.high = rounded(span.high);
  return span;
}

Point firstNode(const Lattice &lattice, const Span &span)
{
  return lattice.origin +
         lattice.u * Point(span.low.real() * lattice.a, span.low.imag() * lattice.b);
}

/// How far a place may be moved without a loss: what the numbers leave open.
double precisionOf(const Points &points, const Lattice &lattice, const Span &span, double extent)
{
  constexpr double part = 0.25;
  return std::max({rounding * extent,
                   4. * std::numeric_limits<double>::epsilon() * std::abs(points.shift()),
                   part * span.distance * std::min(lattice.a, lattice.b)});
}

/// Angle, cells and origin in as few digits as the precision leaves open.
TurnedPlane inRoundNumbers(const Points &points, const Lattice &lattice, const Span &span,
                           double precision)
{
  const Point steps = span.high - span.low;
  const double reach = std::hypot(steps.real() * lattice.a, steps.imag() * lattice.b);
  const Point first = firstNode(lattice, span) + points.shift();
  TurnedPlane plane;
  plane.origin = {snapped(first.real(), precision), snapped(first.imag(), precision)};
  plane.cell = {snapped(lattice.a, precision / (steps.real() + 1.)),
                snapped(lattice.b, precision / (steps.imag() + 1.))};
  plane.nodes = {steps.real() + 1., steps.imag() + 1.};
  plane.azimuth =
      snapped(-qRadiansToDegrees(std::arg(lattice.u)), qRadiansToDegrees(precision / reach));
  return plane;
}

Lattice latticeOf(const TurnedPlane &plane, const Points &points)
{
  Lattice lattice;
  lattice.origin = Point(plane.origin[0], plane.origin[1]) - points.shift();
  lattice.u = std::polar(1., -qDegreesToRadians(plane.azimuth));
  lattice.a = plane.cell[0];
  lattice.b = plane.cell[1];
  return lattice;
}

}  // namespace

std::optional<TurnedPlane> findTurnedPlane(const std::vector<std::array<double, 3>> &places,
                                           double tolerance)
{
  if (places.empty())
    return std::nullopt;
  const Points points(places);
  const double extent = extentOf(points);
  const std::vector<Point> some = someOf(points);
  Lattice lattice;
  if (!findShortestStep(points, some, rounding * extent, lattice) ||
      !findNextLine(points, some, lattice) || !refineOverAll(points, extent, lattice))
    return std::nullopt;
  turnNorth(lattice);
  const Span span = spanOf(points, lattice);
  if (!(span.low.real() < span.high.real() && span.low.imag() < span.high.imag()))
    return std::nullopt;
  const TurnedPlane plane =
      inRoundNumbers(points, lattice, span, precisionOf(points, lattice, span, extent));
  const Span found = spanOf(points, latticeOf(plane, points));
  if (!(found.distance <= tolerance) || found.low != Point() || found.high != span.high - span.low)
    return std::nullopt;
  return plane;
}

}  // namespace orvenal
