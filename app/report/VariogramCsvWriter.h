#pragma once

#include <QByteArray>

namespace orvenal {

struct Job;
struct Variography;

/// Experimental variograms as a CSV table, one line per direction and lag with pairs:
/// direction,azimuth,dip,distance,pairs,value. Azimuth and dip are empty without a direction. With
/// several variables the columns variable1,variable2 stand in front.
QByteArray variogramCsv(const Variography &variography, const Job &job);

}  // namespace orvenal
