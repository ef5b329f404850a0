#include "app/io/SpatialReference.h"

#include "app/io/GdalErrors.h"

#include <cpl_conv.h>
#include <ogr_spatialref.h>

namespace orvenal {

namespace {

/// "EPSG:28992"; empty without one.
QString authorityCode(const OGRSpatialReference &reference)
{
  const char *authority = reference.GetAuthorityName(nullptr);
  const char *code = reference.GetAuthorityCode(nullptr);
  return authority && code ? QString::fromUtf8(authority) + ':' + QString::fromUtf8(code)
                           : QString();
}

/// The code of the registered reference that one without a code is most likely (some programs write
/// other names and no codes).
QString matchingCode(const OGRSpatialReference &reference)
{
  constexpr int confidence = 90;  // percent: all but names agree
  OGRSpatialReference *match = reference.FindBestMatch(confidence);
  if (!match)
    return QString();
  const QString code = authorityCode(*match);
  match->Release();
  return code;
}

}  // namespace

void SpatialReference::Deleter::operator()(OGRSpatialReference *reference) const
{
  reference->Release();
}

SpatialReference::SpatialReference() = default;
SpatialReference::SpatialReference(SpatialReference &&) noexcept = default;
SpatialReference &SpatialReference::operator=(SpatialReference &&) noexcept = default;
SpatialReference::~SpatialReference() = default;

SpatialReference SpatialReference::parse(const QString &text, QString &reason)
{
  static const char *const options[] = {"ALLOW_NETWORK_ACCESS=NO", "ALLOW_FILE_ACCESS=NO", nullptr};
  const GdalErrors errors;
  SpatialReference reference;
  reference._reference.reset(new OGRSpatialReference);
  if (reference._reference->SetFromUserInput(text.toUtf8().constData(),
                                             const_cast<char **>(options)) != OGRERR_NONE) {
    reason = errors.getMessage();
    reference._reference.reset();
    return reference;
  }
  reference._reference->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return reference;
}

bool SpatialReference::isGeographic() const
{
  return _reference && _reference->IsGeographic();
}

QString SpatialReference::getUnitSymbol() const
{
  if (!_reference)
    return QString();
  if (_reference->IsGeographic())
    return QChar(0xB0);
  const char *name = nullptr;
  _reference->GetLinearUnits(&name);
  const QString unit = QString::fromUtf8(name ? name : "");
  if (unit.startsWith(QLatin1String("metre"), Qt::CaseInsensitive) ||
      unit.startsWith(QLatin1String("meter"), Qt::CaseInsensitive))
    return QStringLiteral("m");
  return unit.contains(QLatin1String("foot"), Qt::CaseInsensitive) ? QStringLiteral("ft") : unit;
}

QString SpatialReference::describe(const QString &text)
{
  QString reason;
  const QString name = parse(text, reason).getName();
  const bool isDefinition = text.contains('[') || text.contains('+') || text.contains('{');
  if (name.isEmpty() || name == text)
    return text;
  return isDefinition ? name : QStringLiteral("%1 (%2)").arg(text, name);
}

QString SpatialReference::toText() const
{
  if (!_reference)
    return QString();
  QString reason;
  const QString code = authorityCode(*_reference);
  return !code.isEmpty() && parse(code, reason).isSame(*this) ? code : toWkt();
}

QString SpatialReference::toWkt() const
{
  if (!_reference)
    return QString();
  static const char *const options[] = {"FORMAT=WKT2_2019", nullptr};
  char *text = nullptr;
  const GdalErrors errors;
  _reference->exportToWkt(&text, options);
  const QString wkt = QString::fromUtf8(text ? text : "");
  CPLFree(text);
  return wkt;
}

bool SpatialReference::isSame(const SpatialReference &other) const
{
  static const char *const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES",
                                        "CRITERION=EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS", nullptr};
  if (!_reference || !other._reference)
    return _reference == other._reference;
  const GdalErrors errors;
  if (_reference->IsSame(other._reference.get(), options))
    return true;
  const QString code = matchingCode(*_reference);
  return !code.isEmpty() && code == matchingCode(*other._reference);
}

QString SpatialReference::getName() const
{
  const char *name = _reference ? _reference->GetName() : nullptr;
  return QString::fromUtf8(name ? name : "");
}

}  // namespace orvenal
