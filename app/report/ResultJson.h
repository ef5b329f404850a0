#pragma once

#include "basic/calc/NbcStatMono.h"

#include <QJsonArray>
#include <QJsonObject>

namespace orvenal {

struct StudyResult;

/// What a study has found, for other programs. Undefined values are null; angles are azimuths and
/// dips, ranges practical ones. docs/results.md describes the keys.
QJsonObject resultToJson(const StudyResult &result);

/// A number, or null for an undefined one.
QJsonValue jsonNumber(double value);

/// The record of one variable's statistics.
QJsonObject statisticsToJson(const NbcStatMono &statistics);

/// The versions of the program and of what it is built on, by name.
QJsonObject versionsToJson();

}  // namespace orvenal
