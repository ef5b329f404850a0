#pragma once

#include "geos/vmodel/NgmAVStructMatern.h"

/// Matern covariance of smoothness 0.5.
class NgmVStructMatern0_5 : public NgmAVStructMatern
{
public:
  NgmVStructMatern0_5();
  NgmVStructMatern0_5(const NgmVStructMatern0_5 &) = default;
};
