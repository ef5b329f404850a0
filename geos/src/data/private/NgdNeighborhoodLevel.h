#pragma once

#include "data/private/NgdSearchVolume.h"
#include "geos/data/NgdNeighborhoodContext.h"
#include "geos/interpol/NgmLgsNeighborhoodMoving.h"

/// A search level of one worker, with the ellipsoid of the target that was searched last.
struct NgdNeighborhoodContext::_Level
{
  NgmLgsNeighborhoodMoving parameters;
  int code;
  QString name;
  NgdSearchVolume pointVolume;
  NgdSearchVolume blockVolume;
};
