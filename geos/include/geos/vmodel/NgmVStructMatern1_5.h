#pragma once

#include "geos/vmodel/NgmAVStructMatern.h"

/// Matern covariance of smoothness 1.5.
class NgmVStructMatern1_5 : public NgmAVStructMatern
{
public:
  NgmVStructMatern1_5();
  NgmVStructMatern1_5(const NgmVStructMatern1_5 &) = default;
};
