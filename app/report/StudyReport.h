#pragma once

#include <QByteArray>

namespace orvenal {

struct StudyResult;

/// The report of a study: one HTML file (UTF-8) with its pictures inside, that loads nothing from
/// elsewhere and reads well on a phone and on paper.
///
/// All that changes from run to run (times, threads) stands in the section of id "run".
QByteArray studyReport(const StudyResult &result);

}  // namespace orvenal
