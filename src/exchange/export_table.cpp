#include "exchange/export_table.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "core/files.h"
#include "core/text.h"
#include "exchange/table_list.h"
#include "exchange/value_text.h"
#include "exchange/xml_rows.h"
#include "exchange/xml_text.h"

namespace hyetex {
namespace {

constexpr std::size_t WrittenAtOnce = 1U << 18;
// The disk gets a large file in parts, so that windows do not wait for it at the end.
constexpr std::size_t FlushedAtOnce = 8U << 20;
constexpr std::int64_t StepRows = 32;  // long values of each are asked for one by one

tl::unexpected<DbError> Wrong(std::string why) {
  return tl::unexpected(DbError{db_error::StatementFailed, std::move(why), {}});
}

class TableWriter {
 public:
  TableWriter(WrittenTable& written, Markup markup, bool roundsNumbers)
      : written_(written), markup_(markup), roundsNumbers_(roundsNumbers) {}

  DbResult<void> Write(Recordset& rows, Progress& progress) {
    const std::string& table = written_.Found.Table;
    if (auto named = NameElements(rows, table); !named) return named;
    text_ = "<" + table + "s>\n";
    const auto walked = ForEachRow(rows, [&]() -> DbResult<bool> {
      if (written_.Found.Rows % StepRows == 0 && !progress.Step(written_.Found.Rows, 0, table))
        return tl::unexpected(DbError{db_error::Cancelled, "Stopped", {}});
      ++written_.Found.Rows;
      if (auto row = AddRow(rows); !row) return tl::unexpected(row.error());
      if (text_.size() >= WrittenAtOnce)
        if (auto flushed = Flush(); !flushed) return tl::unexpected(flushed.error());
      return true;
    });
    if (!walked) return walked;
    text_ += "</" + table + "s>\n";
    return Flush();
  }

 private:
  struct Field {
    std::string Begin, End;  // the element's tags, the first one open for an attribute
    std::string Name;
    ColumnKind Kind;
  };

  DbResult<void> NameElements(const Recordset& rows, const std::string& table) {
    const auto isName = [](const std::string& name) {
      return IsXmlName(name) && name.size() < MostXmlNameBytes;
    };
    if (!isName(table)) return Wrong("\"" + ShownText(table) + "\" can be no element's name in XML");
    for (const CatalogColumn& column : rows.Fields()) {
      if (!isName(column.Name))
        return Wrong("The column \"" + ShownText(column.Name) + "\" can be no element's name in XML");
      fields_.push_back({.Begin = "<" + column.Name,
                         .End = "</" + column.Name + ">\n",
                         .Name = column.Name,
                         .Kind = KindOf(column)});
    }
    rowBegin_ = "<" + table + ">\n";
    rowEnd_ = "</" + table + ">\n";
    return {};
  }

  DbResult<void> AddRow(Recordset& rows) {
    text_ += rowBegin_;
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      auto value = rows.Value(static_cast<int>(i));
      if (!value) return tl::unexpected(value.error());
      const std::size_t before = text_.size();
      AddField(fields_[i], *value);
      bytes += text_.size() - before;
    }
    text_ += rowEnd_;
    if (bytes > MostXmlRowBytes)
      return Wrong("Row " + std::to_string(written_.Found.Rows) +
                   " is longer than 256 MB, which no import would take");
    return {};
  }

  void AddField(const Field& field, DbValue& value) {
    text_ += field.Begin;
    if (IsNull(value)) {
      text_ += ">";
    } else if (auto* binary = std::get_if<DbBinary>(&value)) {
      AddText(field, binary->Bytes);
    } else if (auto* text = std::get_if<std::string>(&value)) {
      const bool asItIs = field.Kind == ColumnKind::Number && !roundsNumbers_;
      AddText(field, asItIs ? *text : ExchangeText(std::move(*text), field.Kind));
    } else {
      AddText(field, TextOf(value));
    }
    text_ += field.End;
  }

  void Note(ValueCount& count, const Field& field) {
    if (count.Count++ == 0) count.First = "row " + std::to_string(written_.Found.Rows) + ", " + field.Name;
  }

  void AddText(const Field& field, std::string_view value) {
    ExportedTable& found = written_.Found;
    const bool escaped = markup_ == Markup::Escaped;
    const XmlText kind = KindOfXmlText(value);
    if (value.empty()) Note(found.Empty, field);
    if (kind == XmlText::Unfit && field.Kind != ColumnKind::Binary) Note(found.Encoded, field);
    if (kind == XmlText::Markup) Note(found.Marked, field);
    if (kind != XmlText::Unfit && kind != XmlText::Plain && value.find('\r') != std::string_view::npos)
      Note(found.Returns, field);
    if (kind == XmlText::Unfit || (value.empty() && escaped)) {
      text_.append(" ").append(EncodingAttribute).append("=\"").append(Base64Encoding).append("\">");
      AppendBase64(text_, value);
      return;
    }
    text_ += ">";
    if (kind == XmlText::Plain || !escaped)
      text_ += value;
    else
      AppendEscaped(text_, value);
  }

  DbResult<void> Flush() {
    unflushed_ += text_.size();
    bool done = WriteAll(written_.File.Get(), text_);
    if (done && unflushed_ >= FlushedAtOnce) {
      done = ::fdatasync(written_.File.Get()) == 0;
      unflushed_ = 0;
    }
    if (!done) return Wrong("Cannot write " + written_.Found.Path + ": " + std::strerror(errno));
    text_.clear();
    return {};
  }

  WrittenTable& written_;
  const Markup markup_;
  const bool roundsNumbers_;  // SQLite writes more digits than a number has
  std::vector<Field> fields_;
  std::string rowBegin_, rowEnd_, text_;
  std::size_t unflushed_ = 0;  // bytes of the file
};

// Several tables on their way out.
class Exporter {
 public:
  Exporter(HyetexPlotDB& database, const std::string& folder, Progress& progress)
      : database_(database), folder_(folder), progress_(progress) {}

  ExportResult Run(const std::vector<std::string>& tables, const ChooseMarkup& choose) {
    if (!Prepare(tables)) return std::move(result_);
    for (const std::string& table : tables)
      if (!Write(table, Markup::Escaped)) return std::move(result_);
    const auto markup = Choose(choose);
    if (!markup) {
      result_.Cancelled = true;
      return std::move(result_);
    }
    if (*markup == Markup::Unchanged && !WriteUnchanged()) return std::move(result_);
    for (WrittenTable& written : written_) {
      if (const auto placed = written.Place())
        result_.Tables.push_back(written.Found);
      else
        Fail(written.Found.Table, {db_error::StatementFailed, placed.error(), {}});
    }
    return std::move(result_);
  }

 private:
  void Fail(const std::string& table, const DbError& error) { result_.Failed.push_back({table, error}); }

  bool Prepare(const std::vector<std::string>& tables) {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    DbResult<void> done;
    if (error) done = Wrong("The folder " + folder_ + " cannot be made: " + error.message());
    if (done && !database_.DatabaseConnection.IsOpen()) done = database_.OpenDatabase();
    if (!done)
      for (const std::string& table : tables) Fail(table, done.error());
    if (done) ClearTemporaries(folder_);
    return done.has_value();
  }

  // Returns false when the operator wants no more.
  bool Write(const std::string& table, Markup markup) {
    auto written = WriteTable(database_, table, folder_, markup, progress_);
    if (written) {
      written_.push_back(*std::move(written));
    } else if (written.error().Number == db_error::Cancelled) {
      result_.Cancelled = true;
    } else {
      Fail(table, written.error());
    }
    return !result_.Cancelled;
  }

  std::optional<Markup> Choose(const ChooseMarkup& choose) const {
    std::vector<const ExportedTable*> marked;
    for (const WrittenTable& written : written_)
      if (written.Found.Marked.Count > 0) marked.push_back(&written.Found);
    return choose(marked);
  }

  bool WriteUnchanged() {
    std::vector<WrittenTable> escaped = std::exchange(written_, {});
    for (WrittenTable& written : escaped) {
      const ExportedTable& found = written.Found;
      if (found.Marked.Count + found.Returns.Count + found.Empty.Count == 0)
        written_.push_back(std::move(written));
      else if (!Write(found.Table, Markup::Unchanged))
        return false;
    }
    return true;
  }

  HyetexPlotDB& database_;
  const std::string& folder_;
  Progress& progress_;
  std::vector<WrittenTable> written_;
  ExportResult result_;
};

void AddNote(std::vector<std::string>& notes, const ValueCount& count, const std::string& what) {
  if (count.Count > 0)
    notes.push_back(std::to_string(count.Count) + (count.Count == 1 ? " value " : " values ") + what +
                    ", the first in " + count.First);
}

}  // namespace

Result<void> WrittenTable::Place() {
  if (const auto placed = File.Replace(Target, ModeOf(Target).value_or(NewFileMode())); !placed)
    return Failure("Cannot write " + Found.Path + ": " + placed.error());
  return {};
}

DbResult<WrittenTable> WriteTable(HyetexPlotDB& database, const std::string& table, const std::string& folder,
                                  Markup markup, Progress& progress) {
  const std::string path = JoinPath(folder, XmlFileName(table));
  if (auto opened = database.OpenAnyTable(table, {.AsText = true}); !opened)
    return tl::unexpected(opened.error());
  // A link keeps pointing where it points: the file behind it is the one that is replaced.
  std::error_code noTarget;
  std::string target = std::filesystem::weakly_canonical(path, noTarget).string();
  if (noTarget || target.empty()) target = path;
  auto file = TemporaryFile::In(std::filesystem::path(target).parent_path().string());
  if (!file) return Wrong("Cannot write " + path + ": " + file.error());
  WrittenTable written{
      .Found = {.Table = table, .Path = path}, .Target = std::move(target), .File = *std::move(file)};
  const auto done = TableWriter(written, markup, database.DatabaseConnection.Maker() == "SQLite")
                        .Write(database.AnyTable, progress);
  database.AnyTable.Close();
  if (!done) return tl::unexpected(done.error());
  return written;
}

ExportResult ExportTables(HyetexPlotDB& database, const std::vector<std::string>& tables,
                          const std::string& folder, const ChooseMarkup& choose, Progress& progress) {
  const ClosedAfter closed(database);
  return Exporter(database, folder, progress).Run(tables, choose);
}

ExportResult ExportTable(HyetexPlotDB& database, const std::string& table, const std::string& folder,
                         const ChooseMarkup& choose, Progress& progress) {
  return ExportTables(database, {table}, folder, choose, progress);
}

std::vector<std::string> NotesOf(const ExportedTable& table, Markup markup) {
  std::vector<std::string> notes;
  if (markup == Markup::Unchanged) {
    AddNote(notes, table.Marked, "with \"<\", \"&\" or \"]]>\" unchanged: no XML program reads the file");
    AddNote(notes, table.Returns, "with carriage returns, which are read as line feeds");
    AddNote(notes, table.Empty, "without a character, which are read as no value");
  }
  AddNote(notes, table.Encoded, "that XML has no characters for, written as base64");
  return notes;
}

std::string MarkupQuestion(const std::vector<const ExportedTable*>& marked) {
  constexpr std::size_t mostShown = 10;
  std::vector<std::string> lines;
  for (const ExportedTable* table : marked)
    lines.push_back(table->Table + ": " + std::to_string(table->Marked.Count) +
                    (table->Marked.Count == 1 ? " value" : " values") + ", the first in " +
                    table->Marked.First);
  return "There are values that hold \"<\", \"&\" or \"]]>\", which are marks of XML:" +
         FirstLines(lines, mostShown) +
         "\n\nWrite them escaped (as &lt; and &amp;), so that the file can be read back? No writes them "
         "unchanged, and no XML program will read the file.";
}

}  // namespace hyetex
