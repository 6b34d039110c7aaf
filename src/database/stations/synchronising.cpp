#include "database/stations/synchronising.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/store/stored_text.h"

namespace hyetex {
namespace {

constexpr const char* IntegrityTitle = "Checking database integrity";
constexpr const char* ReadingTitle = "Reading Instruments from the Database";
constexpr const char* DateTitle = "Adding a new instrument to the database";
constexpr const char* AddingTitle = "Adding Missing Instruments and Stations to the Database";
constexpr const char* SavingTitle = "Syncronize Stations Lists";

constexpr std::size_t MostNotes = 20;

// The columns by their place, as the tables have always been addressed.
namespace instrument {
constexpr int Code = 0, StationKey = 1, Type = 2, StationName = 6, StartDate = 7;
}
namespace station {
constexpr int Key = 0, Name = 1, Code = 2;
}

std::string Joined(const std::vector<std::string>& entries) {
  std::string text;
  for (const std::string& entry : entries) text += (text.empty() ? "" : ", ") + ShownText(entry);
  return text;
}

std::string CodeNote(std::string_view code, std::string_view why) {
  return ShownText(code) + ": " + std::string(why);
}

class Synchronising {
 public:
  Synchronising(HyetexPlotDB& database, ReferenceLists& lists, Dialogs& dialogs, Progress& progress)
      : database_(database), lists_(lists), dialogs_(dialogs), progress_(progress) {}

  /// Whether there was a database to work on.
  Synchronised Run() {
    const ClosedAfter closed(database_);
    if (const auto opened = database_.OpenDatabase(); !opened) {
      database_.Show(opened.error());
      return Synchronised::Not;
    }
    DbResult<void> read = CheckIntegrity();
    if (read) read = ReadInstruments();
    database_.InstrumentTable.Close();  // before the operator is asked to read anything
    bool all = Succeeded(read);
    TellRead();
    if (all) all = Succeeded(AddMissing());
    TellAdded();
    return all ? Synchronised::Saved : Synchronised::Partly;
  }

 private:
  bool Succeeded(const DbResult<void>& done) {
    if (!done) database_.Show(done.error());
    return done.has_value();
  }

  // ---- From the database to the list

  DbResult<void> CheckIntegrity() {
    if (const auto opened = database_.OpenChartAscii(); !opened) return opened;
    const bool hasLoaded = database_.ChartAsciiTable.HasField(column::Loaded);
    database_.ChartAsciiTable.Close();
    if (!hasLoaded)
      dialogs_.MessageBox(
          IntegrityTitle,
          "The 'loaded' field is missing in CHART_ASCII, as a result the programme cannot keep "
          "track on files already populated.",
          BoxButtons::Ok, BoxIcon::Warning);
    return {};
  }

  DbResult<void> ReadInstruments() {
    std::set<std::string> listed;
    for (const StationRecord& station : lists_.Stations) listed.insert(ComparedCode(station.InstrumentCode));
    if (const auto opened = database_.OpenInstrument(); !opened) return opened;
    Recordset& table = database_.InstrumentTable;
    return ForEachRow(table, [&]() -> DbResult<bool> {
      const auto value = table.Value(instrument::Code);
      if (!value) return tl::unexpected(value.error());
      const std::string code = TextOf(*value);
      inDatabase_.insert(ComparedCode(code));
      if (listed.insert(ComparedCode(code)).second) Take(code);
      return true;
    });
  }

  void Take(const std::string& code) {
    const auto station = ResolveCode(code, lists_);
    if (!station) return;
    auto why = CheckRoom(lists_.Stations);
    if (!why) why = CheckEntry(*station);
    if (why) {
      notTaken_.push_back(CodeNote(code, *why));
      return;
    }
    lists_.Stations.push_back(*station);
    ++taken_;
  }

  void TellRead() {
    if (taken_ == 1)
      dialogs_.MessageBox(ReadingTitle, "One Instrument was read from the database to the list in Hyetex");
    else if (taken_ > 1)
      dialogs_.MessageBox(ReadingTitle, std::to_string(taken_) +
                                            " Instruments were read from the database to the list in Hyetex");
    TellNotes(ReadingTitle, "These instruments of the database were not read to the list:", notTaken_);
  }

  // ---- From the list to the database

  DbResult<void> AddMissing() {
    for (const auto& [table, columns] : {std::pair(table_name::Instrument, &instrumentColumns_),
                                         std::pair(table_name::Station, &stationColumns_)}) {
      auto found = database_.DatabaseConnection.Columns(table);
      if (!found) return tl::unexpected(found.error());
      *columns = *std::move(found);
    }
    for (const StationRecord& station : lists_.Stations) {
      if (inDatabase_.contains(ComparedCode(station.InstrumentCode)) ||
          !ResolveCode(station.InstrumentCode, lists_))
        continue;
      inDatabase_.insert(
          ComparedCode(station.InstrumentCode));  // asked about once, however often it is listed
      if (const auto why = CheckCode(station.InstrumentCode)) {
        notAdded_.push_back(CodeNote(station.InstrumentCode, *why));
        continue;
      }
      const auto start = AskStartDate(station.InstrumentCode);
      if (!start) continue;
      if (const auto added = Add(station, *start); !added) return added;
    }
    return {};
  }

  // Keys are not cut to fit: a cut one would name another instrument, and be missed at the next run.
  std::optional<std::string> CheckCode(const std::string& code) const {
    if (const auto why = CheckCodeParts(code)) return why;
    const auto tooLong = [](const std::string& text, const std::vector<CatalogColumn>& columns, int column) {
      return column < static_cast<int>(columns.size()) &&
             CutToWidth(text, columns[static_cast<std::size_t>(column)].Size) != text;
    };
    if (tooLong(ShownText(code), instrumentColumns_, instrument::Code) ||
        tooLong(ShownText(StationKey(code)), instrumentColumns_, instrument::StationKey) ||
        tooLong(ShownText(StationKey(code)), stationColumns_, station::Key))
      return "The code is longer than the database can hold.";
    return std::nullopt;
  }

  std::optional<Date> AskStartDate(const std::string& code) {
    const std::string prompt = "Please enter the Instrument START DATE of " + ShownText(code) +
                               "\nin the following format - dd/mm/yyyy";
    std::string typed;
    do {
      typed = dialogs_.InputBox(DateTitle, prompt, typed).value_or("");
      if (const auto date = ConvertStartDate(typed)) return date;
    } while (!Trim(typed).empty());
    return std::nullopt;
  }

  DbResult<void> Add(const StationRecord& added, Date start) {
    const std::string code = ShownText(added.InstrumentCode), key = StationKey(code);
    auto transaction =
        Transaction::BeginWriting(database_.DatabaseConnection, table_name::Instrument, progress_);
    if (!transaction) return tl::unexpected(transaction.error());

    std::vector<std::string> cut;
    bool newStation = false, newInstrument = false;
    auto written = [&]() -> DbResult<void> {
      // Another desk may have added the instrument while the operator was thinking of a date.
      if (auto opened = database_.OpenInstrument(Only(instrumentColumns_, instrument::Code, code)); !opened)
        return opened;
      newInstrument = database_.InstrumentTable.Eof();
      if (!newInstrument) return {};
      if (auto opened = database_.OpenStation(Only(stationColumns_, station::Key, key)); !opened)
        return opened;
      newStation = database_.StationTable.Eof();
      if (newStation) {
        const std::string stationCode(CodeParts(code)[2]);
        auto stored = Store(database_.StationTable,
                            {{station::Key, key},
                             {station::Name, ShownText(added.Name)},
                             {station::Code, stationCode.empty() ? DbValue() : DbValue(stationCode)}},
                            cut);
        if (!stored) return stored;
      }
      return Store(database_.InstrumentTable,
                   {{instrument::Code, code},
                    {instrument::StationKey, key},
                    {instrument::Type, std::string("Recorder")},
                    {instrument::StationName, ShownText(added.Name)},
                    {instrument::StartDate, DbDate{start}}},
                   cut);
    }();
    database_.StationTable.Close();
    database_.InstrumentTable.Close();
    if (!written || !newInstrument) return written;
    if (auto committed = transaction->Commit(); !committed) return committed;

    if (newStation) stationsAdded_.push_back(added.Name);
    instrumentsAdded_.push_back(added.InstrumentCode);
    for (const std::string& what : cut) cut_.push_back(CodeNote(code, what));
    return {};
  }

  static Selection Only(const std::vector<CatalogColumn>& columns, int column, const std::string& text) {
    if (column >= static_cast<int>(columns.size())) return {};
    return {.Where = {{columns[static_cast<std::size_t>(column)].Name, Compare::EqualIgnoringCase, text}}};
  }

  // A new row; texts that their column cannot hold are cut to its width and named in `cut`.
  static DbResult<void> Store(Recordset& table, std::vector<std::pair<int, DbValue>>&& values,
                              std::vector<std::string>& cut) {
    if (auto row = table.AddNew(); !row) return row;
    for (auto& [column, value] : values) {
      if (auto* text = std::get_if<std::string>(&value); text && column < table.FieldCount()) {
        const CatalogColumn& field = table.Fields()[static_cast<std::size_t>(column)];
        if (std::string kept = CutToWidth(*text, field.Size); kept != *text) {
          cut.push_back(field.Name + " is now \"" + kept + "\".");
          *text = std::move(kept);
        }
      }
      if (auto set = table.SetValue(column, std::move(value)); !set) return set;
    }
    return table.Update();
  }

  void TellAdded() {
    if (!instrumentsAdded_.empty()) {
      std::string text;
      if (!stationsAdded_.empty())
        text = "The following stations have been added to the database: " + Joined(stationsAdded_) + ".\n";
      text += "The following instrumnets have been added to the database: " + Joined(instrumentsAdded_) + ".";
      dialogs_.MessageBox(AddingTitle, text, BoxButtons::Ok, BoxIcon::Information);
      dialogs_.MessageBox(AddingTitle,
                          "Important ! Please go to your database as soon as possible and fill in all of the "
                          "other required fields of information for these stations and instruments. See your "
                          "database administrator if you have any questions.",
                          BoxButtons::Ok, BoxIcon::Warning);
    }
    TellNotes(AddingTitle, "These instruments were not added to the database:", notAdded_);
    TellNotes(AddingTitle, "These texts were longer than the database can hold, and were cut:", cut_);
  }

  void TellNotes(const char* title, std::string text, const std::vector<std::string>& notes) {
    if (notes.empty()) return;
    text += FirstLines(notes, MostNotes);
    dialogs_.MessageBox(title, text, BoxButtons::Ok, BoxIcon::Warning);
  }

  HyetexPlotDB& database_;
  ReferenceLists& lists_;
  Dialogs& dialogs_;
  Progress& progress_;

  std::set<std::string> inDatabase_;  // instrument codes, as they are compared
  int taken_ = 0;
  std::vector<CatalogColumn> instrumentColumns_, stationColumns_;
  std::vector<std::string> stationsAdded_, instrumentsAdded_;
  std::vector<std::string> notTaken_, notAdded_, cut_;  // a line each
};

}  // namespace

std::optional<Date> ConvertStartDate(std::string_view typed) {
  constexpr std::string_view Form = "00/00/0000";
  typed = Trim(typed);
  const auto fits = [](char c, char form) { return form == '/' ? c == '/' : c >= '0' && c <= '9'; };
  if (!std::equal(typed.begin(), typed.end(), Form.begin(), Form.end(), fits)) return std::nullopt;
  const int day = LeadingInt16(typed.substr(0, 2)), month = LeadingInt16(typed.substr(3, 2)),
            year = LeadingInt16(typed.substr(6));
  const Date date = MakeDate(year, month, day);
  const CalendarTime read = ToCalendar(date);
  if (read.Day != day || read.Month != month || read.Year != year) return std::nullopt;
  return date;
}

Synchronised Synchronise(HyetexPlotDB& database, ReferenceLists& lists, const std::string& programFolder,
                         Dialogs& dialogs, Progress& progress) {
  const Synchronised done = Synchronising(database, lists, dialogs, progress).Run();
  if (done == Synchronised::Not) return done;
  const auto saved = SaveLists(programFolder, lists);
  if (saved) return done;
  dialogs.MessageBox(SavingTitle, saved.error(), BoxButtons::Ok, BoxIcon::Warning);
  return Synchronised::Unsaved;
}

}  // namespace hyetex
