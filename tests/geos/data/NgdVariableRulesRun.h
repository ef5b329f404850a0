#pragma once

#include "geos/data/NgdVariableRules.h"

/// The steps that a calculator takes with its rules before it runs.
class NgdVariableRulesRun
{
public:
  explicit NgdVariableRulesRun(NgdVariableRules &rules) : _rules(rules) {}

  void createTemporaries() { _rules._createTmpVariables(); }

  /// Everything up to the opening of the variables.
  void prepare()
  {
    _rules._checkRoles();
    _rules._createTmpVariables();
    _rules._updateVariableInfos();
    _rules._updateMacroInfos();
    _rules._createMissingMacroRealizations();
  }

private:
  NgdVariableRules &_rules;
};
