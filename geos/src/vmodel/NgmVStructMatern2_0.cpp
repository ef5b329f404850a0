#include "geos/vmodel/NgmVStructMatern2_0.h"

NgmVStructMatern2_0::NgmVStructMatern2_0() : NgmAVStructMatern(NgmEVStruct::MATERN_2_0, 2.) {}
