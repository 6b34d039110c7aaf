// The windows that turn stored charts into rows of rain.
#include "app/app_desk.h"
#include "database/windows/frmPopulate.h"
#include "database/windows/frmPrePop.h"

namespace hyetex {

QWidget* AppDesk::MakePrePop() {
  return new frmPrePop(*this, dialogs_, program_.Settings, program_.Computation, [this] { ShowHelp(); });
}

QWidget* AppDesk::MakePopulate() {
  return new frmPopulate(*this, dialogs_, program_.Settings, program_.Database, program_.Lists,
                         program_.Computation,
                         {.User = program_.User().Name,
                          .Instrument = std::exchange(populateInstrument_, {}),
                          .ShowRain = [this](const std::string& instrument, Date from, Date to) {
                            ShowRain({instrument, from, to});
                          }});
}

}  // namespace hyetex
