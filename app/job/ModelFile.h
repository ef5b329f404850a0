#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class NgmVModel;

namespace orvenal {

/// Endings of the files of variogram models, without dot: JSON in the terms of a job, and the
/// program's own binary form.
///
/// A binary file begins with the magic bytes \x89 O R V M D L \n, the version (quint32), the length
/// of what follows (quint64) and its SHA-256 (32 bytes); then come the number of dimensions
/// (quint32) and the model's stream. All numbers are big-endian.
QStringList modelEndings();

/// Whether a file begins as a model in the binary form.
bool isBinaryModel(const QString &path);

/// The content of a file of that name. Both forms are read back to the same model.
QByteArray modelToBytes(const QString &file, const NgmVModel &model, int nDimensions);

/// Reads a model for samples of these dimensions and variables. A file that is not there, is
/// damaged or holds another kind of model is an NbeUserError that names `shownName`; a JSON text
/// that is no model is a UsageError.
NgmVModel readModelFile(const QString &path, const QString &shownName, int nDimensions,
                        int nVariables);

/// Reads a model of any number of dimensions and variables. JSON without `dimensions` has those of
/// its ranges, two when nothing tells.
NgmVModel readModelFile(const QString &path, const QString &shownName);

/// The model with the bits that come back from a JSON file. The shape of a fitted model may differ
/// from it in the last digit, and its structures without a sill are gone.
NgmVModel modelAsWritten(const NgmVModel &model, int nDimensions);

}  // namespace orvenal
