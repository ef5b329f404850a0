#pragma once

#include "geos/interpol/NgmNeighborhoodFaultSet.h"

#include <vector>

class NbgGeomPolygon;
class NbgGeomPolyline;
class NbgGeomPolylineSet;

/// Faults given as polylines; closed ones are fault polygons. Touching a fault counts as crossing
/// it, the border of a polygon is inside.
class NgmFaultSetPolylines : public NgmNeighborhoodFaultSet::NgmIFaultSet
{
public:
  explicit NgmFaultSetPolylines(const NbgGeomPolylineSet &polylines);
  NgmFaultSetPolylines(const NgmFaultSetPolylines &other);
  NgmFaultSetPolylines &operator=(const NgmFaultSetPolylines &other);
  ~NgmFaultSetPolylines() override;

protected:
  bool _isEmpty() const override;
  bool _isInside(const NbgVector3D &point) const override;
  int _isInsideFaultId(const NbgVector3D &point) const override;
  bool _isInLineOfSight(const NbgVector3D &from, const NbgVector3D &to,
                        int excludedFault) const override;

private:
  struct _Polygon;

  void _addFaults(const NbgGeomPolylineSet &polylines);

  std::vector<NbgGeomPolyline> _faults;
  std::vector<_Polygon> _polygons;
};
