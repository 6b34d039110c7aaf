// One desk of the soak: a program folder with many staged charts, the tablet on its line, the databases that
// it shares with the others, and whoever unplugs, kills and fills the disk.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "soak/child_program.h"
#include "soak/planned_session.h"
#include "tablet/pty_line.h"

namespace hyetex::test {

struct SoakCounts {
  long Sessions = 0, Steps = 0, Unplugged = 0, Killed = 0, GoneOn = 0, FullDisks = 0, Loads = 0,
       LoadsKilled = 0, LoadsFull = 0;
  long Lost = 0;     ///< charts that are not as they were traced
  long Crashed = 0;  ///< programs that ended without having been ended
  // Of the desk that nobody ends: memory in KB and handles, after the first quarter of the sessions and at
  // the end.
  long KilobytesThen = 0, KilobytesNow = 0, HandlesThen = 0, HandlesNow = 0;
  long SteadySessions = 0;
};

struct StationOrder {
  std::string Folder;  ///< its own, empty
  std::string Instrument;
  int ChartType = 0, Tablet = 0, Sessions = 0;
  unsigned Seed = 1;
  bool Steady = false;                 ///< its program is never killed, but watched
  std::vector<std::string> Databases;  ///< connection texts
};

class SoakStation {
 public:
  SoakStation(StationOrder order, SoakCounts& counts);

  void RunAll();

 private:
  enum class Incident { None, Unplug, Kill, FullDisk };

  void Stage();
  bool RunSession(int index);
  bool Trace(int index, const PlannedSession& plan);
  bool SendBurst(const PlannedSession& plan, std::size_t from, std::size_t to, Incident incident);
  bool GoOnAfter(Incident incident, int index);
  bool SaveChart(bool fullDisk);
  bool KeepInDatabases(const std::string& chart);
  void Watch(int index);

  bool EnsureDesk();
  bool OpenChart(int index);
  void PlugIn();
  void Unplug();
  /// Sends what the cursor at rest does, so that the program finds the tablet.
  void Rest();
  void Send(std::string_view bytes);
  std::vector<std::string> JournalLines() const;
  /// Until the journal holds so many steps, and these are the plan's.
  bool Journaled(const PlannedSession& plan, std::size_t steps);
  bool Wrong(const std::string& what);
  std::string ChartName(int index) const;
  double StartOf(int index) const;

  const StationOrder order_;
  SoakCounts& counts_;
  Chance chance_;
  int tablet_;
  ChartTypeRecord paper_;
  double days_ = 1;
  std::string port_, program_, reference_;
  std::optional<PtyLine> line_;
  DeskProcess desk_;
  int session_ = -1;
};

}  // namespace hyetex::test
