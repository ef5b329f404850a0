#pragma once

#include <QList>
#include <QStringList>

#include <memory>

class NgmAVStruct;
class NgmEVStruct;
class NgmModelContext;

/// Creates the basic structures of variogram models.
class NgmVStructFactory
{
public:
  NgmVStructFactory() = delete;

  /// A structure of the type with its default parameters; null for `UNKNOWN`.
  static std::unique_ptr<NgmAVStruct> createTemplateVStruct(const NgmEVStruct &type);

  /// The same with a context; fails when the structure needs a higher drift degree than it admits.
  static std::unique_ptr<NgmAVStruct> createVStruct(const NgmEVStruct &type,
                                                    const NgmModelContext &context);

  /// A copy of the same class.
  static std::unique_ptr<NgmAVStruct> createVStruct(const NgmAVStruct &structure);

  /// The types that a drift of the degree admits, in the order of their values; -1 stands for
  /// stationary ones. With `tbOnly` those that turning bands can simulate.
  static QList<NgmEVStruct> getStructureForDegree(int degree, bool tbOnly);

  /// The differentiable types that a drift of the degree admits, for models of potential fields.
  static QList<NgmEVStruct> getStructureForPotential(int degree);

  /// Labels of getStructureForDegree().
  static QStringList getStructureNamesForDegree(int degree, bool tbOnly);
  static QStringList getStructureNamesAll();
  static QStringList getStructureNamesStationnary(bool tbOnly);
  static QStringList getStructureNamesIntrinsic();
};
