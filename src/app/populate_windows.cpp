// The windows that turn stored charts into rows of rain.
#include "app/app_desk.h"
#include "database/windows/frmPopulate.h"
#include "database/windows/frmPrePop.h"

namespace hyetex {

void AppDesk::AddPopulateWindows() {
  factories_[WindowId::PrePop] = [this] {
    return new frmPrePop(*this, program_.Settings, program_.Computation, [this] { ShowHelp(); });
  };
  factories_[WindowId::Populate] = [this] {
    return new frmPopulate(*this, dialogs_, program_.Settings, program_.Database, program_.Lists,
                           program_.Computation);
  };
}

}  // namespace hyetex
