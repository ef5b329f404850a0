#include "geos/vmodel/NgmVStructMatern0_5.h"

NgmVStructMatern0_5::NgmVStructMatern0_5() : NgmAVStructMatern(NgmEVStruct::MATERN_0_5, 0.5) {}
