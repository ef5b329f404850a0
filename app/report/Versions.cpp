#include "app/report/Versions.h"

#include "app/plot/PlotLibrary.h"

#include <gdal.h>

namespace orvenal {

QString programVersion()
{
  return QStringLiteral(ORVENAL_VERSION);
}

QVector<QPair<QString, QString>> allVersions()
{
  return {{QStringLiteral("Orvenal"), programVersion()},
          {QStringLiteral("Qt"), QString::fromLatin1(qVersion())},
          {QStringLiteral("GDAL"), QString::fromLatin1(GDALVersionInfo("RELEASE_NAME"))},
          {QStringLiteral("QCustomPlot"), QStringLiteral(QCUSTOMPLOT_VERSION_STR)}};
}

}  // namespace orvenal
