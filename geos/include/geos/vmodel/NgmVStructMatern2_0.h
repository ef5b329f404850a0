#pragma once

#include "geos/vmodel/NgmAVStructMatern.h"

/// Matern covariance of smoothness 2.
class NgmVStructMatern2_0 : public NgmAVStructMatern
{
public:
  NgmVStructMatern2_0();
  NgmVStructMatern2_0(const NgmVStructMatern2_0 &) = default;
};
