#pragma once

#include <memory>

class NgmAVStruct;
class NgmEVStruct;
class NgmModelContext;

/// Creates the basic structures of variogram models.
class NgmVStructFactory
{
public:
  NgmVStructFactory() = delete;

  /// A structure of the type with its default parameters; null when no class stands for the type
  /// (`UNKNOWN` among them).
  static std::unique_ptr<NgmAVStruct> createTemplateVStruct(const NgmEVStruct &type);

  /// The same with a context; fails when the structure needs a higher drift degree than it admits.
  static std::unique_ptr<NgmAVStruct> createVStruct(const NgmEVStruct &type,
                                                    const NgmModelContext &context);

  /// A copy of the same class.
  static std::unique_ptr<NgmAVStruct> createVStruct(const NgmAVStruct &structure);
};
