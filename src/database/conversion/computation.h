// The values that govern a conversion of stored charts into rows of rain. They live until the populate window
// closes.
#pragma once

namespace hyetex {

struct ComputationVariables {
  bool UseAlpha = false;            ///< take the pen's skew out with the chart's selected alpha
  float MinimalLapse = 0;           ///< minutes; shorter steps of a series are joined; 0 keeps all
  float GmtShift = 0;               ///< days taken off local time to get GMT
  bool DefaultDepthManual = false;  ///< the manual gage's depth counts, not the digitized one
};

}  // namespace hyetex
