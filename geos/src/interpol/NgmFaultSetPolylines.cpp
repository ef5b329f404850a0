#include "geos/interpol/NgmFaultSetPolylines.h"

#include "basic/geom/NbgGeomPolygon.h"
#include "basic/geom/NbgGeomPolylineSet.h"

struct NgmFaultSetPolylines::_Polygon
{
  int fault;
  NbgGeomPolygon shape;
};

NgmFaultSetPolylines::NgmFaultSetPolylines(const NbgGeomPolylineSet &polylines)
{
  _addFaults(polylines);
}

NgmFaultSetPolylines::NgmFaultSetPolylines(const NgmFaultSetPolylines &other) = default;
NgmFaultSetPolylines &NgmFaultSetPolylines::operator=(const NgmFaultSetPolylines &other) = default;
NgmFaultSetPolylines::~NgmFaultSetPolylines() = default;

bool NgmFaultSetPolylines::_isEmpty() const
{
  return _faults.empty();
}

bool NgmFaultSetPolylines::_isInside(const NbgVector3D &point) const
{
  return _isInsideFaultId(point) != -1;
}

int NgmFaultSetPolylines::_isInsideFaultId(const NbgVector3D &point) const
{
  for (const _Polygon &polygon : _polygons) {
    if (polygon.shape.isInside(point))
      return polygon.fault;
  }
  return -1;
}

bool NgmFaultSetPolylines::_isInLineOfSight(const NbgVector3D &from, const NbgVector3D &to,
                                            int excludedFault) const
{
  for (int fault = 0; fault < int(_faults.size()); ++fault) {
    if (fault != excludedFault && _faults[fault].isCrossedBy(from, to))
      return false;
  }
  return true;
}

void NgmFaultSetPolylines::_addFaults(const NbgGeomPolylineSet &polylines)
{
  for (int i = 0; i < polylines.getCount(); ++i) {
    const NbgGeomPolyline &polyline = polylines.getPolyline(i);
    if (polyline.isClosed())
      _polygons.push_back({int(_faults.size()), NbgGeomPolygon(polyline.getVertices())});
    _faults.push_back(polyline);
  }
}
