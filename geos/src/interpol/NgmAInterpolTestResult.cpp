#include "geos/interpol/NgmAInterpolTestResult.h"

#include "basic/base/NbbGlobal.h"
#include "geos/NgcEnumGlobal.h"

#include <QStringList>

namespace {

const NbgIntVector3D undefinedIndices(NbbGlobal::I32_FFFF, NbbGlobal::I32_FFFF,
                                      NbbGlobal::I32_FFFF);

constexpr int maximumRowsAtLevelOne = 10;

QString tableText(const NbdDataPoints &points, int level)
{
  QStringList lines =
      points.getDataTableConst().toString().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  const int maximumLines = maximumRowsAtLevelOne + 1;  // names first
  if (level == 1 && lines.size() > maximumLines) {
    lines = lines.mid(0, maximumLines);
    lines << QStringLiteral("...");
  }
  QString text;
  for (const QString &line : qAsConst(lines))
    text += QStringLiteral("  ") + line + QLatin1Char('\n');
  return text;
}

}  // namespace

NgmAInterpolTestResult::NgmAInterpolTestResult()
    : _targetSampleNumber(NbbGlobal::I64_FFFF),
      _targetLocation(NbgVector3D::Undefined),
      _targetIndices(undefinedIndices),
      _status(NgcENeighborhoodErrorCode::NEIGH_NO_SAMPLE.getValue())
{
}

NgmAInterpolTestResult::~NgmAInterpolTestResult() = default;

void NgmAInterpolTestResult::reset()
{
  setTarget(NbbGlobal::I64_FFFF, NbgVector3D::Undefined, undefinedIndices);
  setNeighborhood(NgcENeighborhoodErrorCode::NEIGH_NO_SAMPLE, -1, QString());
  _neighbors = NbdDataPoints();
  _targetValues = NbdDataPoints();
  _inputDetails.clear();
  _outputDetails.clear();
}

void NgmAInterpolTestResult::setTarget(qint64 sampleNumber, const NbgVector3D &location,
                                       const NbgIntVector3D &indices)
{
  _targetSampleNumber = sampleNumber;
  _targetLocation = location;
  _targetIndices = indices;
}

const NgcENeighborhoodErrorCode &NgmAInterpolTestResult::getNeighborhoodStatus() const
{
  return NgcENeighborhoodErrorCode::fromValue(_status);
}

void NgmAInterpolTestResult::setNeighborhood(const NgcENeighborhoodErrorCode &status,
                                             int nestedIndex, const QString &nestedName)
{
  _status = status.getValue();
  _nestedIndex = nestedIndex;
  _nestedName = nestedName;
}

QString NgmAInterpolTestResult::toString(int level) const
{
  QString text =
      QStringLiteral("  Target sample number: %1\n")
          .arg(NbbGlobal::isDefined(_targetSampleNumber) ? QString::number(_targetSampleNumber)
                                                         : NbbGlobal::STR_NA) +
      QStringLiteral("  Neighborhood index: %1\n").arg(_nestedIndex) +
      QStringLiteral("  Neighborhood status: %1\n").arg(getNeighborhoodStatus().getLabel());
  text += QStringLiteral("\n  Target values:\n") + QStringLiteral("  --------------\n");
  text += tableText(_targetValues, level);
  text += QStringLiteral("\n  Neighbors:\n") + QStringLiteral("  ----------\n");
  text += _neighbors.getNSamples() > 0 ? tableText(_neighbors, level)
                                       : QStringLiteral("No neighbors defined!\n");
  return text;
}

QString NgmAInterpolTestResult::debug(int level) const
{
  return NgmAInterpolTestResult::toString(level) + QLatin1Char('\n') + toString(level);
}
