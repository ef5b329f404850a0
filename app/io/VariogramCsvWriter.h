#pragma once

#include <QByteArray>

namespace orvenal {

struct Variography;

/// Experimental variograms as a CSV table, one line per direction and lag with pairs:
/// direction,azimuth,dip,distance,pairs,value. Azimuth and dip are empty without a direction.
QByteArray variogramCsv(const Variography &variography);

}  // namespace orvenal
