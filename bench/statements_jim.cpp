#include <jim.h>

#include "statements.h"

namespace {

class Jim {
 public:
  Jim() { Jim_RegisterCoreCommands(interpreter_); }
  Jim(const Jim&) = delete;
  Jim& operator=(const Jim&) = delete;
  ~Jim() { Jim_FreeInterp(interpreter_); }

  void Set(const char* name, const char* value) {
    Jim_SetVariableStrWithStr(interpreter_, name, value);
  }

  bool Evaluate(const std::string& script) {
    return Jim_Eval(interpreter_, script.c_str()) == JIM_OK;
  }

  std::string Value() const { return Jim_String(Jim_GetResult(interpreter_)); }

 private:
  Jim_Interp* const interpreter_ = Jim_CreateInterp();
};

const bool kMeasured = MeasureStatements<Jim>("Jim Tcl", &Statement::jim);

}  // namespace
