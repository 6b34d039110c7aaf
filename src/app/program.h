// All that the windows share, in one place; each window is given just the parts it needs.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "chartfiles/chart_text.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/access/plot_db.h"
#include "database/conversion/computation.h"
#include "scan/chosen_scans.h"
#include "scan/scan_image.h"
#include "staging/lists/lists.h"
#include "staging/main_menu.h"
#include "staging/tasks/staging_area.h"

namespace hyetex {

/// What the words of the command line ask for.
struct StartWords {
  std::string Folder = {};         ///< the program folder
  std::optional<int> Task = {};    ///< the staged chart to digitize right after the login, by its index
  std::optional<int> Tablet = {};  ///< instead of the tablet type of the settings
  std::string Port = {};           ///< the tablet's device; empty for serial port 1
};

/// The chart that is being digitized.
struct ActiveChart {
  hyetex::Session Session;
  ChartOrigin Origin;
  int Tablet = 0;
  std::string Device;
  std::shared_ptr<const ScanImage> Scan = {};  ///< under the trace; null: there is none
  bool TraceIsWanted = false;                  ///< what the program has traced of it is to be reviewed
  std::string Comment = {};                    ///< what the digitizer says of it, once it was typed
};

struct Program {
  Program(std::string folder, Dialogs& dialogs) : Settings(std::move(folder)), Database(Settings, dialogs) {}

  hyetex::Settings Settings;
  ReferenceLists Lists;
  std::int16_t CurrentUser = 0;
  StagingArea Staging;            ///< the staged charts, while frmTasks is open
  ChosenScans Scans;              ///< of the staged charts
  std::int16_t CurrentChart = 0;  ///< the default chart type; the setting CurrentChart keeps it
  HyetexPlotDB Database;
  ComputationVariables Computation;
  ChartSourceKind EditorSource = ChartSourceKind::HardDrive;
  std::shared_ptr<ActiveChart> Active;  ///< kept alive by the windows that work on it

  const UserRecord& User() const { return Lists.Users[static_cast<std::size_t>(CurrentUser)]; }
};

}  // namespace hyetex
