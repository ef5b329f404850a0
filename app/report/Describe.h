#pragma once

#include "basic/calc/NbcStatMono.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

class NbgGeomGrid;
class NbgVector3D;
class NgmVModel;

namespace orvenal {

struct Job;
struct StudyResult;
struct Variography;

/// Parts of a study in words and numbers, the same for the terminal and the report.
namespace Describe {

/// A direction by its components east, north and up.
QString vector(const NbgVector3D &direction);

/// All digits of a coordinate that a reader may need.
QString coordinate(double value);

/// Values and names of the figures that are shown of statistics.
QStringList statisticsHeader();
QStringList statisticsRow(const NbcStatMono &statistics);

/// Names of the variable and of the two results, with their units.
QString sampleLabel(const Job &job);
QString estimateLabel(const Job &job);
QString deviationLabel(const Job &job);

QString method(const Job &job);
QString grid(const Job &job);

/// ", rows towards azimuth 30°", or nothing for a grid along the axes.
QString turn(const NbgGeomGrid &grid);

/// "nugget 0.05 + Spherical of sill 0.59, range 897 m"; without sills for several variables.
QString model(const Job &job);

/// Names and values: the kind of kriging and what belongs to it.
QVector<QPair<QString, QString>> kriging(const Job &job);

/// Names and values: type, radii and axes, numbers of samples.
QVector<QPair<QString, QString>> neighborhood(const Job &job);

/// Why nodes have no estimate although their system was not at fault.
QString reasonOfGaps(const Job &job);

/// How many nodes were estimated, and what became of the others.
QVector<QPair<QString, QString>> outcome(const StudyResult &result);

}  // namespace Describe

/// The statistics of samples and results as a text table.
QString textStatistics(const StudyResult &result);

/// Names and values: the means of a cross-validation, with the unit of the variable when it is
/// given.
QVector<QPair<QString, QString>> crossValidationRows(const StudyResult &result,
                                                     const QString &unit = QString());

/// The same as text.
QString textCrossValidation(const StudyResult &result);

/// Header and rows of the matrices of sills of a model of several variables: structure, variable,
/// a column per variable.
QList<QStringList> sillRows(const Job &job);

/// The same as a text table.
QString textSills(const Job &job);

/// Names and values: the lag, directions with their tolerances, and the width.
QVector<QPair<QString, QString>> variogramParameters(const Variography &variography,
                                                     const Job &job);

/// Header and rows of the variograms: direction, distance, pairs, value; the variables in front
/// when there are several.
QList<QStringList> variogramRows(const Variography &variography, const Job &job);

/// The variograms as a text table.
QString textVariograms(const Variography &variography, const Job &job);

}  // namespace orvenal
