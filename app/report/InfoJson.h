#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

class NgmVModel;

namespace orvenal {

struct Job;
struct TableLayer;
struct TableSummary;

/// What is in a file, for programs. The member "kind" says what it is: "table", "layers", "model"
/// or "job". Values that are undefined are null.
namespace InfoJson {

QJsonObject table(const TableSummary &summary, const QString &shown);
QJsonObject layers(const QList<TableLayer> &layers, const QString &shown);
QJsonObject model(const NgmVModel &model, int nDimensions, const QString &shown);
QJsonObject job(const Job &job, const QString &shown);

}  // namespace InfoJson

}  // namespace orvenal
