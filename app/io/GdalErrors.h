#pragma once

#include <QString>

#include <cpl_error.h>

namespace orvenal {

/// While it lives, GDAL keeps its messages on this thread to itself.
class GdalErrors
{
public:
  GdalErrors()
  {
    CPLErrorReset();
    CPLPushErrorHandler(CPLQuietErrorHandler);
  }
  ~GdalErrors() { CPLPopErrorHandler(); }
  GdalErrors(const GdalErrors &) = delete;
  GdalErrors &operator=(const GdalErrors &) = delete;

  bool hasFailed() const { return CPLGetLastErrorType() >= CE_Failure; }
  QString getMessage() const { return QString::fromUtf8(CPLGetLastErrorMsg()); }
};

}  // namespace orvenal
