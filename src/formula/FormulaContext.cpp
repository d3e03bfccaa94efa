#include "formula/FormulaContext.h"

#include "formula/DateNumber.h"

namespace ff {

double FormulaContext::Now() const { return now ? now() : NowAsNumber(); }

} // namespace ff
