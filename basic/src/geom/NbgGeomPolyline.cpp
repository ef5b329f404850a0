#include "basic/geom/NbgGeomPolyline.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Exact sums of doubles as expansions: components of which none overlaps another, the last one
/// being the largest (Shewchuk 1997).
class Expansion
{
public:
  void add(double value)
  {
    double carried = value;
    int n = 0;
    for (int i = 0; i < _size; ++i) {
      const double component = _components[i];
      const double sum = carried + component;
      const double part = sum - carried;
      const double error = (carried - (sum - part)) + (component - part);
      carried = sum;
      if (error != 0.)
        _components[n++] = error;
    }
    if (carried != 0.)
      _components[n++] = carried;
    _size = n;
  }

  void addProduct(double a, double b)
  {
    const double product = a * b;
    add(std::fma(a, b, -product));
    add(product);
  }

  double largest() const { return _size > 0 ? _components[_size - 1] : 0.; }

private:
  std::array<double, 16> _components;
  int _size = 0;
};

double exactOrientation(const NbgVector3D &a, const NbgVector3D &b, const NbgVector3D &c)
{
  Expansion sum;
  sum.addProduct(b.x(), c.y());
  sum.addProduct(-b.x(), a.y());
  sum.addProduct(-a.x(), c.y());
  sum.addProduct(-b.y(), c.x());
  sum.addProduct(b.y(), a.x());
  sum.addProduct(a.y(), c.x());
  return sum.largest();
}

bool rangesMeet(double a, double b, double c, double d)
{
  return std::min(a, b) <= std::max(c, d) && std::min(c, d) <= std::max(a, b);
}

bool areOpposite(double s, double t)
{
  return (s <= 0. && t >= 0.) || (s >= 0. && t <= 0.);
}

}  // namespace

double nbgOrientation(const NbgVector3D &a, const NbgVector3D &b, const NbgVector3D &c)
{
  const double left = (b.x() - a.x()) * (c.y() - a.y());
  const double right = (b.y() - a.y()) * (c.x() - a.x());
  const double area = left - right;
  // Error bound of the line above (Shewchuk 1997, ccwerrboundA).
  const double bound = 3.3306690738754716e-16 * (std::abs(left) + std::abs(right));
  return std::abs(area) > bound ? area : exactOrientation(a, b, c);
}

bool nbgSegmentsMeet(const NbgVector3D &a, const NbgVector3D &b, const NbgVector3D &c,
                     const NbgVector3D &d)
{
  return rangesMeet(a.x(), b.x(), c.x(), d.x()) && rangesMeet(a.y(), b.y(), c.y(), d.y()) &&
         areOpposite(nbgOrientation(c, d, a), nbgOrientation(c, d, b)) &&
         areOpposite(nbgOrientation(a, b, c), nbgOrientation(a, b, d));
}

NbgGeomPolyline::NbgGeomPolyline(const QVector<NbgVector3D> &vertices, bool closed)
    : _vertices(vertices), _closed(closed)
{
  for (const NbgVector3D &vertex : vertices)
    _box.extendWith(vertex);
  if (vertices.size() < 3) {
    _closed = false;
  } else if (vertices.size() > 3) {
    const NbgVector3D &first = vertices.first();
    const NbgVector3D &last = vertices.last();
    _closed = closed || (first.x() == last.x() && first.y() == last.y());
  }
}

bool NbgGeomPolyline::isCrossedBy(const NbgVector3D &a, const NbgVector3D &b) const
{
  if (!_box.isValid())
    return false;
  const NbgVector3D &lower = _box.getLowerLeftCorner();
  const NbgVector3D &upper = _box.getUpperRightCorner();
  if (!rangesMeet(a.x(), b.x(), lower.x(), upper.x()) ||
      !rangesMeet(a.y(), b.y(), lower.y(), upper.y()))
    return false;

  const NbgVector3D *vertices = _vertices.constData();
  const int n = _vertices.size();
  if (n == 1)
    return nbgSegmentsMeet(a, b, vertices[0], vertices[0]);
  for (int i = 1; i < n; ++i) {
    if (nbgSegmentsMeet(a, b, vertices[i - 1], vertices[i]))
      return true;
  }
  return _closed && nbgSegmentsMeet(a, b, vertices[n - 1], vertices[0]);
}
