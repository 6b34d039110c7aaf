// The window in which an instrument's pen skew is selected.
#include "alpha/windows/frmAlpha.h"
#include "app/app_desk.h"

namespace hyetex {

QWidget* AppDesk::MakeAlpha() { return new frmAlpha(*this, dialogs_, program_.Settings, program_.Database); }

}  // namespace hyetex
