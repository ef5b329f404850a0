#include "geos/vmodel/NgmVStructMatern1_0.h"

NgmVStructMatern1_0::NgmVStructMatern1_0() : NgmAVStructMatern(NgmEVStruct::MATERN_1_0, 1.) {}
