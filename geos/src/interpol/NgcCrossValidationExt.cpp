#include "geos/interpol/NgcCrossValidationExt.h"

#include "basic/error/NbeAssertion.h"
#include "geos/interpol/NgcCrossValidation.h"

#include <QObject>

NgcCrossValidationExt::NgcCrossValidationExt(const QString &key)
    : NgcAKrigingExt(new NgcCrossValidation(key), QObject::tr("Cross Validation"), false)
{
}

NgcCrossValidationExt::~NgcCrossValidationExt()
{
  _finish();
}

void NgcCrossValidationExt::test(qint64 /*sampleNumber*/, NgmAInterpolTestResult & /*result*/)
{
  NBE_FAIL(QObject::tr("No test implemented"));
}

void NgcCrossValidationExt::setRejectionMode(const NgcERejectionMode &mode)
{
  _getKriging().setRejectionMode(mode);
}

void NgcCrossValidationExt::setRejectionVarIndex(int index)
{
  _getKriging().setRejectionVarIndex(index);
}

void NgcCrossValidationExt::setRejectionPartition(const NgmSearchPartition &partition)
{
  _getKriging().setRejectionPartition(partition);
}

void NgcCrossValidationExt::setRejectionAuxVarOption(const NgcERejectionAuxVarOption &option)
{
  _getKriging().setRejectionAuxVarOption(option);
}

const XValRes &NgcCrossValidationExt::getResults() const
{
  return _getValidation().getResults();
}

NgcCrossValidation &NgcCrossValidationExt::_getValidation() const
{
  return static_cast<NgcCrossValidation &>(_getKriging());
}
