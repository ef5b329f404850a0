#include "geos/vmodel/NgmVStructMatern1_5.h"

NgmVStructMatern1_5::NgmVStructMatern1_5() : NgmAVStructMatern(NgmEVStruct::MATERN_1_5, 1.5) {}
