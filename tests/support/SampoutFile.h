#pragma once

#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdSampout.h"

#include <QSharedPointer>
#include <QString>

#include <string>
#include <vector>

namespace testsupport {

/// A file for the sample output of an estimation in three dimensions, without rows.
struct SampoutFile
{
  QSharedPointer<NbpMemoryProviderPointsW> provider;
  NgdDataSetPoints dataSet;

  SampoutFile()
      : provider(QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_3D, 0))
  {
    provider->addXVariable({});
    provider->addYVariable({});
    provider->addZVariable({});
    dataSet.setDataProvider(provider);
    for (const char *name : {"cx", "cy", "cz"})
      add(NgdSampout::getRoleBlockCenter(), name);
    for (const char *name : {"nx", "ny", "nz"})
      add(NgdSampout::getRoleNeighborCoor(), name);
    add(NgdSampout::getRoleGradeValue(), "value");
    add(NgdSampout::getRoleWeight(), "weight");
    add(NgdSampout::getRoleDistanceEuclid(), "euclid");
    add(NgdSampout::getRoleDistanceAniso(), "aniso");
    add(NgdSampout::getRoleGradeName(), "name", Nbd::TYPE_ALPHA);
  }

  void add(const QString &role, const char *name, Nbd::EVariableType type = Nbd::TYPE_DOUBLE)
  {
    provider->addEmptyVariableSimple(QLatin1String(name), type);
    dataSet.assignVariable(role, provider->getIdFromName(QLatin1String(name)));
  }

  int getNRows() const { return int(provider->getSampleCount()); }

  std::vector<double> values(const char *name) const
  {
    NbdVariableDouble values;
    read(name, values);
    return values.getVector();
  }
  std::vector<std::string> texts(const char *name) const
  {
    NbdVariableAlpha values;
    read(name, values);
    std::vector<std::string> texts;
    for (int row = 0; row < values.getNValues(); ++row)
      texts.push_back(values.getValue(row).toStdString());
    return texts;
  }

private:
  void read(const char *name, NbdAVariable &values) const
  {
    values.resizeAndFill(getNRows());
    provider->readVariable(provider->getIdFromName(QLatin1String(name)),
                           NbiIntervalIntLarge::fromLength(getNRows()), values, 0);
  }
};

}  // namespace testsupport
