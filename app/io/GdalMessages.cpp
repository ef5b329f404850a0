#include "app/io/GdalMessages.h"

#include <QLoggingCategory>

#include <cpl_error.h>

namespace orvenal {

namespace {

Q_LOGGING_CATEGORY(gdalLog, "orvenal.gdal", QtWarningMsg)

void CPL_STDCALL receive(CPLErr type, CPLErrorNum, const char *message)
{
  if (type >= CE_Failure)
    qCWarning(gdalLog, "GDAL: %s", message);
  else
    qCInfo(gdalLog, "GDAL: %s", message);
}

}  // namespace

void logGdalMessages()
{
  CPLSetErrorHandler(receive);
}

}  // namespace orvenal
