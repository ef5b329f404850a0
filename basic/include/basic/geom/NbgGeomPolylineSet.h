#pragma once

#include "basic/geom/NbgGeomPolyline.h"

#include <QList>

/// Polylines in the order of their addition.
class NbgGeomPolylineSet
{
public:
  void add(const NbgGeomPolyline &polyline) { _polylines << polyline; }
  void clear() { _polylines.clear(); }

  bool isEmpty() const { return _polylines.isEmpty(); }
  int getCount() const { return _polylines.size(); }
  const NbgGeomPolyline &getPolyline(int index) const { return _polylines[index]; }

private:
  QList<NbgGeomPolyline> _polylines;
};
