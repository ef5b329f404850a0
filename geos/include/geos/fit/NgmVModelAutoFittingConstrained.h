#pragma once

#include "basic/calc/NbcAProgressComposite.h"
#include "geos/matrix/NgmMatrix.h"

#include <memory>

class NgmVModel;
class NgmVModelAutoFitting;

/// Automatic fit under a minimum or maximum of the nugget: the standard fit and, where its nugget
/// violates one of them, a fit with the nugget fixed at that bound.
class NgmVModelAutoFittingConstrained : public NbcAProgressComposite<NbcAProgress>
{
public:
  NgmVModelAutoFittingConstrained();
  ~NgmVModelAutoFittingConstrained() override;

  /// The fit whose settings all runs take; it becomes the property of this object. Its initial
  /// model carries the constraints.
  void setVModelAutoFittingProto(NgmVModelAutoFitting *proto);
  NgmVModelAutoFitting *getVModelAutoFittingProto() const { return _proto.get(); }

  /// Of the last fit that was needed.
  const NgmVModel &getFittedModel() const;
  double getGOF() const;

protected:
  void _doRun() override;
  void _preProcessing() override;
  bool _prepareProgressable(const QString &id) override;
  void _progressableFinished(const QString &id) override;

private:
  void _checkConstraints() const;

  /// The bound of a mode; undefined matrix (0 x 0) when the model has none.
  NgmMatrix _getConstraint(const QString &id) const;
  bool _isViolated(const QString &id) const;

  std::unique_ptr<NgmVModelAutoFitting> _proto;
  std::unique_ptr<NgmVModel> _fittedModel;
  double _gof = 0.;
};
