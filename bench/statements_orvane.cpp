#include <cstdint>

#include "orvane.h"
#include "statements.h"

namespace {

class Orvane {
 public:
  void Set(const char* name, const char* value) {
    SetVarValue((std::string("%") + name).c_str(), value);
  }

  bool Evaluate(const std::string& script) {
    const std::int32_t kind = RunScript(script.c_str(), result_);
    return kind == KindAssignment || kind == KindExpression;
  }

  std::string Value() const { return result_; }

 private:
  char result_[512];
};

const bool kMeasured = MeasureStatements<Orvane>("Orvane", &Statement::orvane);

}  // namespace
