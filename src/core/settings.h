// The settings of the whole system: one table of all keys, and one way to read and write them. Nothing is
// held in memory, since operators edit the file by hand (core/definitions.h): each call reads it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/records.h"
#include "core/result.h"

namespace hyetex {

/// One key of the settings. A line belongs to a key whose name stands anywhere in it, so no name may stand in
/// another.
struct SettingKey {
  std::string_view Name;     ///< as the file has it; of a family with '*' in the place of the member
  std::string_view Default;  ///< what a key without a value reads as; empty is 0 for a number

  constexpr explicit SettingKey(std::string_view name, std::string_view standard = {})
      : Name(name), Default(standard) {}
};
// The type of a key is the type of its value.
struct TextKey : SettingKey {
  using SettingKey::SettingKey;
};
struct Int16Key : SettingKey {
  using SettingKey::SettingKey;
};
struct FloatKey : SettingKey {
  using SettingKey::SettingKey;
};
struct FlagKey : SettingKey {  ///< 0 or 1
  using SettingKey::SettingKey;
};
struct DateKey : SettingKey {
  using SettingKey::SettingKey;
};
// Families: one key for each member.
struct TextFamily : SettingKey {
  using SettingKey::SettingKey;
};
struct FloatFamily : SettingKey {
  using SettingKey::SettingKey;
};

/// The table of all keys, by the room that owns them; a default that is no constant is told beside its key.
namespace setting {

// platform
inline constexpr FloatFamily PlaceTop{"*-Top"}, PlaceLeft{"*-Left"};  ///< by the window's name
inline constexpr TextFamily PlaceSize{"*-Size"};                      ///< "width,height", the same way
inline constexpr TextFamily SerialPort{"SerialPort*"};  ///< a port's device; without it the machine's Nth one

// digitizing
inline constexpr FloatKey ViewHeight{"frmHyetex-Height"};  ///< 0: as the screen allows
inline constexpr TextKey BoardPlace{"frmHyetex-ToolBox"};  ///< "left,top"; left 0: the board's own place

// chartfiles
inline constexpr TextKey CommentCode{"frmComment-Code"};

// editor
inline constexpr Int16Key EditorChart{"Editor-Chart"};  ///< its chart type

// staging
inline constexpr TextKey UserName{"frmLogin-UserName"};
inline constexpr TextKey HelpSite{"HelpSite"};  ///< where the help page stands, as "https://www.example.org"
inline constexpr TextKey TargetFolder{"TargetFolder"};  ///< read by the function of that name
inline constexpr Int16Key DigitizerType{"DigitizerType"};
inline constexpr Int16Key ComPort{"COMport"};
inline constexpr Int16Key TraceSource{"frmTasks-Source"};  ///< TraceSource of staging/tasks/activation.h
inline constexpr TextKey ScanFolder{"frmTasks-Scans"};     ///< in which scans are found by their names
inline constexpr Int16Key CurrentChart{"CurrentChart"};    ///< the default chart type
inline constexpr Int16Key DefaultsChart{"frmDefinition"};  ///< the one chosen last in the program defaults
inline constexpr Int16Key TaskRow{"frmTasks-Row"};         ///< from 1; 0: none
inline constexpr TextKey TaskStation{"frmTasks-Station"};
/// Of the chart defined last; without one, today.
inline constexpr DateKey TaskBegin{"frmTaskDef-BeginDate"}, TaskEnd{"frmTaskDef-EndDate"};
inline constexpr Int16Key TaskReliability{"frmTaskDef-Reliability"};

// database
inline constexpr TextKey DatabaseName{"DataBaseName"};  ///< the connection text
inline constexpr TextKey LoadSource{"frmLoad-Source"};  ///< without it the target folder
inline constexpr TextKey LoadTarget{"frmLoad-Target"};  ///< without it the program folder's "Data"
inline constexpr FlagKey LoadMoves{"frmLoad-chkTarget"};
inline constexpr TextKey GmtHours{"frmPrePop-GMT", "2"};  ///< as typed
inline constexpr FlagKey UseAlpha{"frmPrePop-Alpha"};

// exchange
inline constexpr TextKey ExchangeFolder{"Exchange-Folder"};  ///< without it the program folder's "Data"

// rain
inline constexpr TextKey RainFolder{"frmRainfall-Folder"};  ///< of the files; without it the target folder
inline constexpr Int16Key RainDayBegins{"frmRainfall-DayHour"};      ///< hours behind midnight
inline constexpr TextKey RainDryHours{"frmRainfall-DryHours", "6"};  ///< as typed

/// The whole table.
inline constexpr std::array All = std::to_array<SettingKey>(
    {PlaceTop,        PlaceLeft,    PlaceSize,     SerialPort,   ViewHeight,    BoardPlace, CommentCode,
     EditorChart,     UserName,     HelpSite,      TargetFolder, DigitizerType, ComPort,    CurrentChart,
     DefaultsChart,   TraceSource,  ScanFolder,    TaskRow,      TaskStation,   TaskBegin,  TaskEnd,
     TaskReliability, DatabaseName, LoadSource,    LoadTarget,   LoadMoves,     GmtHours,   UseAlpha,
     ExchangeFolder,  RainFolder,   RainDayBegins, RainDryHours});

}  // namespace setting

/// The name in the file: a family's with the member in its place.
std::string SettingName(const SettingKey& key, std::string_view member = {});

/// The settings of one program folder. Numbers and flags are read leniently, as the longest leading number; a
/// value that cannot be read is the default.
class Settings {
 public:
  explicit Settings(std::string folder) : folder_(std::move(folder)) {}

  const std::string& Folder() const { return folder_; }

  /// Whether the file has a value for the key.
  bool Has(const SettingKey& key, std::string_view member = {}) const;

  std::string Get(const TextKey& key) const { return Text(key); }
  std::int16_t Get(const Int16Key& key) const;
  float Get(const FloatKey& key) const;
  bool Get(const FlagKey& key) const;
  /// A whole day; nothing where there is no valid date.
  std::optional<Date> Get(const DateKey& key) const;
  std::string Get(const TextFamily& family, std::string_view member) const { return Text(family, member); }
  float Get(const FloatFamily& family, std::string_view member) const;

  // Where a guess would do harm, since the value decides what is written where. Each fails on a file that
  // cannot be read.
  Result<std::string> Read(const TextKey& key) const;
  Result<std::int16_t> Read(const Int16Key& key) const;

  // Each fails, with the file as it was, on a text of more than one line and on a file that cannot be read or
  // written.
  Result<void> Set(const TextKey& key, std::string_view value) { return Put(SettingName(key), value); }
  Result<void> Set(const Int16Key& key, int value);
  Result<void> Set(const FloatKey& key, float value);
  Result<void> Set(const FlagKey& key, bool value);
  Result<void> Set(const DateKey& key, Date value);  ///< its day
  Result<void> Set(const TextFamily& family, std::string_view member, std::string_view value);
  Result<void> Set(const FloatFamily& family, std::string_view member, float value);

 private:
  std::string Text(const SettingKey& key, std::string_view member = {}) const;
  Result<void> Put(const std::string& name, std::string_view value);

  std::string folder_;
};

/// The folder that chart files go to: the one of the settings while it exists, else the program folder.
std::string TargetFolder(const Settings& settings);
/// The same for a write; fails on settings that cannot be read.
Result<std::string> ReadTargetFolder(const Settings& settings);

}  // namespace hyetex
