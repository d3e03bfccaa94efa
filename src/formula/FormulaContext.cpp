#include "formula/FormulaContext.h"

#include "formula/DateNumber.h"

namespace ff {

double FormulaContext::Now() const { return NumberFromDateTime(clock->now()); }

} // namespace ff
