#include "app/report/Versions.h"

#include "app/base/ProgramVersion.h"
#include "app/plot/PlotLibrary.h"

#include <gdal.h>
#include <netcdf.h>

namespace orvenal {

QVector<QPair<QString, QString>> allVersions()
{
  return {{QStringLiteral("Orvenal"), programVersion()},
          {QStringLiteral("Qt"), QString::fromLatin1(qVersion())},
          {QStringLiteral("GDAL"), QString::fromLatin1(GDALVersionInfo("RELEASE_NAME"))},
          {QStringLiteral("netCDF"),
           QString::fromLatin1(nc_inq_libvers()).section(QLatin1Char(' '), 0, 0)},
          {QStringLiteral("QCustomPlot"), QStringLiteral(QCUSTOMPLOT_VERSION_STR)}};
}

}  // namespace orvenal
