#include "exchange/import_rows.h"

#include <algorithm>
#include <utility>

#include "core/text.h"

namespace hyetex {
namespace {

// What a savepoint costs should not count beside its rows; what fails is written again in halves.
constexpr std::size_t MostGroupRows = 1000, LeastGroupRows = 50;
constexpr std::size_t MostGroupBytes = 4U << 20;

std::size_t BytesOf(const DbValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return text->size();
  if (const auto* binary = std::get_if<DbBinary>(&value)) return binary->Bytes.size();
  return 0;
}

// The transaction is open and good for more: what a server says of values and its triggers of rows, and what
// SQLite says by numbers of its own, of a value that is too large or of the wrong type.
bool IsRowsFault(const DbError& error) {
  if (error.Number == db_error::ConstraintViolation) return true;
  const bool ofValues = error.State.starts_with("22") || error.State == "P0001";
  return ofValues || error.Description.ends_with("(18)") || error.Description.ends_with("(20)");
}

}  // namespace

ImportRows::ImportRows(Connection& connection, std::string table, std::vector<CatalogColumn> columns,
                       std::function<bool()> goesOn)
    : connection_(connection),
      table_(std::move(table)),
      columns_(std::move(columns)),
      goesOn_(std::move(goesOn)),
      groupRows_(MostGroupRows) {}

DbResult<void> ImportRows::Add(std::int64_t number, std::vector<DbValue> values) {
  for (const DbValue& value : values) groupBytes_ += BytesOf(value);
  group_.push_back({number, std::move(values)});
  if (group_.size() < groupRows_ && groupBytes_ < MostGroupBytes) return {};
  return Finish();
}

DbResult<void> ImportRows::Finish() {
  const std::int64_t refused = refused_;
  auto written = group_.empty() ? DbResult<void>() : Write(0, group_.size());
  // Where many are refused, few are to be written again.
  groupRows_ = refused_ > refused && duplicates_ == Duplicates::Fail
                   ? std::max(groupRows_ / 2, LeastGroupRows)
                   : std::min(groupRows_ * 2, MostGroupRows);
  group_.clear();
  groupBytes_ = 0;
  return written;
}

void ImportRows::Refuse(std::int64_t number, const std::string& why) {
  // A row that was found to be wrong before those that wait have travelled is not the first for that.
  if (refused_++ > 0 && number > firstNumber_) return;
  firstNumber_ = number;
  firstRefused_ = "row " + std::to_string(number) + ": " + ShownText(why);
}

DbResult<void> ImportRows::Write(std::size_t first, std::size_t count) {
  if (!goesOn_()) return tl::unexpected(DbError{db_error::Cancelled, "Stopped", {}});
  const auto written = TryWrite(first, count);
  if (written) {
    added_ += *written;
    if (const auto skipped = static_cast<std::int64_t>(count) - *written; skipped > 0) {
      Refuse(group_[first].Number, "another row has its unique key");
      refused_ += skipped - 1;
    }
    return {};
  }
  if (!IsRowsFault(written.error())) return tl::unexpected(written.error());
  if (count > 1) {
    if (auto half = Write(first, count / 2); !half) return half;
    return Write(first + count / 2, count - count / 2);
  }
  Refuse(group_[first].Number, NumberAndDescription(written.error()));
  // Why the first was refused is known by now; from here on they are only counted.
  if (written.error().Number == db_error::ConstraintViolation && duplicates_ == Duplicates::Fail &&
      RowWriter::CanSkipDuplicates(connection_)) {
    duplicates_ = Duplicates::Skip;
    writers_.clear();
  }
  return {};
}

// All of these rows, or none of them; the number of those that did not have a key that is there.
DbResult<std::int64_t> ImportRows::TryWrite(std::size_t first, std::size_t count) {
  auto part = Savepoint::Begin(connection_);
  if (!part) return tl::unexpected(part.error());
  std::int64_t written = 0, before = 0;
  RowWriter* writer = nullptr;
  std::vector<bool> left, now(columns_.size());
  const auto finish = [&]() -> DbResult<void> {
    if (writer == nullptr) return {};
    const auto total = writer->Finish();
    if (!total) return tl::unexpected(total.error());
    written += *total - before;
    return {};
  };
  for (std::size_t i = first; i < first + count; ++i) {
    const Row& row = group_[i];
    for (std::size_t column = 0; column < columns_.size(); ++column)
      now[column] = columns_[column].FillsItself && IsNull(row.Values[column]);
    if (writer == nullptr || now != left) {
      // Rows get into the table in their order.
      if (const auto finished = finish(); !finished) return tl::unexpected(finished.error());
      const auto found = WriterFor(now);
      if (!found) return tl::unexpected(found.error());
      writer = *found;
      const auto total = writer->Finish();
      if (!total) return tl::unexpected(total.error());
      before = *total;
      left = now;
    }
    std::vector<DbValue> values;
    values.reserve(columns_.size());
    for (std::size_t column = 0; column < columns_.size(); ++column)
      if (!left[column]) values.push_back(row.Values[column]);
    if (const auto added = writer->Add(std::move(values)); !added) return tl::unexpected(added.error());
  }
  if (const auto finished = finish(); !finished) return tl::unexpected(finished.error());
  if (const auto kept = part->Keep(); !kept) return tl::unexpected(kept.error());
  return written;
}

DbResult<RowWriter*> ImportRows::WriterFor(const std::vector<bool>& left) {
  const auto found = writers_.find(left);
  if (found != writers_.end()) return &found->second;
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns_.size(); ++i)
    if (!left[i]) names.push_back(columns_[i].Name);
  auto writer = RowWriter::Open(connection_, table_, names, duplicates_);
  if (!writer) return tl::unexpected(writer.error());
  return &writers_.emplace(left, std::move(*writer)).first->second;
}

}  // namespace hyetex
