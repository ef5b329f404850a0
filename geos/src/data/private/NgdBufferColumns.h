#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QVector>

class NbdAData;
class NbdAVariable;
class NbdMacroIndex;
class NbpIProviderR;
class NgdVariableDescriptor;

/// One column of a buffer and the provider variable with which it exchanges its values.
struct NgdBufferColumn
{
  QString id;  ///< in the provider; empty for a realization that it lacks
  QString name;
  NbdAVariable *variable = nullptr;
  int realization = 0;  ///< rank in a multi-realization variable
};

/// Which columns of a buffer belong to which variables of a data set. They are matched by name, the
/// realizations of a macro variable by name and macro index.
namespace NgdBufferColumns {

/// The variables of a data set by role.
using Bindings = QMap<QString, QList<NgdVariableDescriptor>>;

/// The columns that loading fills: all whose name the data set binds, each binding once.
QVector<NgdBufferColumn> findLoaded(const Bindings &bindings, const NbpIProviderR &provider,
                                    const NbdAData &buffer);

/// The columns that saving writes: one for each binding with write access (for each realization of
/// a macro). A programming error when the buffer has none or several of that name.
QVector<NgdBufferColumn> findSaved(const Bindings &bindings, const NbpIProviderR &provider,
                                   const NbdAData &buffer);

/// The macro indices that a buffer holds of a variable: an invalid one for a plain variable.
QList<NbdMacroIndex> getIndices(const NgdVariableDescriptor &descriptor, const NbdAData &buffer);

/// A variable that the provider does not hold under an id: without storage, or the selection that
/// it keeps in memory.
bool isWithoutColumn(const NgdVariableDescriptor &descriptor);

}  // namespace NgdBufferColumns
