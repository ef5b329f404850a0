#include "app/io/GdalTable.h"

#include "app/base/Suggestion.h"
#include "app/io/GdalDataset.h"
#include "app/io/GdalErrors.h"
#include "app/io/GdalRasterReader.h"
#include "app/io/GdalTableReader.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QFileInfo>
#include <QObject>

#include <cpl_string.h>
#include <ogrsf_frmts.h>

namespace orvenal {

namespace {

QStringList layerNames(const QList<TableLayer> &layers)
{
  QStringList names;
  for (const TableLayer &layer : layers)
    names << layer.name;
  return names;
}

/// The layer that is asked for, or the only one.
QString chooseLayer(const QString &shownName, const TableFormat &format, const QStringList &names)
{
  if (format.layer.isEmpty() && names.size() > 1)
    throw NbeUserError(QObject::tr("%1: has %2 layers; \"layer\" says which one: %3")
                           .arg(shownName, QString::number(names.size()), quotedList(names)));
  if (format.layer.isEmpty())
    return names.first();
  if (!names.contains(format.layer))
    throw NbeUserError(
        QObject::tr("%1: there is no layer \"%2\"%3; layers: %4")
            .arg(shownName, format.layer, didYouMean(format.layer, names), quotedList(names)));
  return format.layer;
}

QList<TableLayer> vectorLayers(GDALDataset &dataset)
{
  const GdalErrors errors;
  QList<TableLayer> layers;
  for (int i = 0; i < dataset.GetLayerCount(); ++i) {
    OGRLayer *layer = dataset.GetLayer(i);
    if (layer && !dataset.IsLayerPrivate(i))
      layers.append({QString::fromUtf8(layer->GetName()),
                     QString::fromUtf8(OGRGeometryTypeToName(layer->GetGeomType())),
                     layer->GetFeatureCount(false)});
  }
  return layers;
}

std::unique_ptr<TableReader> openRaster(GdalDatasetPtr dataset, const QString &path,
                                        const QString &shownName, const TableFormat &format)
{
  const QList<QPair<QString, QByteArray>> parts = listGdalParts(*dataset, path);
  const bool isPart = !format.layer.isEmpty() || dataset->GetRasterCount() == 0;
  if (!isPart)
    return std::make_unique<GdalRasterReader>(std::move(dataset), shownName, format);
  if (parts.isEmpty())
    throw NbeUserError(
        format.layer.isEmpty()
            ? QObject::tr("%1: holds neither a layer nor a raster").arg(shownName)
            : QObject::tr("%1: has no layers, and none named \"%2\"").arg(shownName, format.layer));
  QStringList names;
  for (const auto &part : parts)
    names << part.first;
  TableFormat chosen = format;
  chosen.layer = chooseLayer(shownName, format, names);
  return std::make_unique<GdalRasterReader>(
      openGdalPart(parts[names.indexOf(chosen.layer)].second, shownName), shownName, chosen);
}

}  // namespace

std::unique_ptr<TableReader> openGdalTable(const QString &path, const QString &shownName,
                                           const TableFormat &format)
{
  GdalDatasetPtr dataset = openGdalDataset(path, shownName);
  const QList<TableLayer> layers = vectorLayers(*dataset);
  if (layers.isEmpty())
    return openRaster(std::move(dataset), path, shownName, format);
  TableFormat chosen = format;
  chosen.layer = chooseLayer(shownName, format, layerNames(layers));
  return std::make_unique<GdalTableReader>(std::move(dataset), shownName, chosen);
}

QStringList listGdalFiles(const QString &path, const QString &shownName)
{
  const GdalDatasetPtr dataset = openGdalDataset(path, shownName);
  const GdalErrors errors;
  const CPLStringList names(dataset->GetFileList());
  QStringList files;
  for (int i = 0; i < names.Count(); ++i) {
    const QFileInfo file(QFile::decodeName(names[i]));
    if (file.isFile())
      files << file.absoluteFilePath();
  }
  return files;
}

QList<TableLayer> listGdalLayers(const QString &path, const QString &shownName)
{
  const GdalDatasetPtr dataset = openGdalDataset(path, shownName);
  QList<TableLayer> layers = vectorLayers(*dataset);
  if (layers.isEmpty() && dataset->GetRasterCount() == 0) {
    for (const auto &part : listGdalParts(*dataset, path))
      layers.append({part.first, QObject::tr("Raster"), -1});
  }
  return layers;
}

}  // namespace orvenal
