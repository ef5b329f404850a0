#pragma once

#include <QList>
#include <QString>

class NgmVModel;

namespace orvenal {

struct Job;
struct TableLayer;
struct TableSummary;

/// What is in a file, for people: columns aligned, within 80 characters where names and numbers let
/// them. `shown` is the name of the file.
namespace InfoText {

QString table(const TableSummary &summary, const QString &shown);
QString layers(const QList<TableLayer> &layers, const QString &shown);
QString model(const NgmVModel &model, int nDimensions, const QString &shown);
QString job(const Job &job, const QString &shown);

}  // namespace InfoText

}  // namespace orvenal
