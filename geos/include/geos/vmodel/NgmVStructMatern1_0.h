#pragma once

#include "geos/vmodel/NgmAVStructMatern.h"

/// Matern covariance of smoothness 1.
class NgmVStructMatern1_0 : public NgmAVStructMatern
{
public:
  NgmVStructMatern1_0();
  NgmVStructMatern1_0(const NgmVStructMatern1_0 &) = default;
};
