// Printed numbers and words, seals, handwriting: ink that is no line of a pen. Told by its shape: in a small
// space there is much more stroke than a line through it has.
#pragma once

#include "scan/ink.h"

namespace hyetex {

/// Takes what looks so out of the ink; such places are hidden then, for the pen may run through them.
void TakeOutLetters(PenInk& ink, double pixelsPerMm);

}  // namespace hyetex
