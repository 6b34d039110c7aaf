#include "platform/odbc/conditions.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/dates.h"

namespace hyetex {
namespace {

// Codes are looked for with up to so many characters, blanks behind them included; longer columns are taken
// to be filled up to their width or not at all.
constexpr std::size_t MostPadded = 64, WidestPadded = 255;
// Past so many times one span over all of them does.
constexpr std::size_t MostSpans = 100;

std::string Marks(const std::string& mark, std::size_t count) {
  std::string marks = mark;
  for (std::size_t i = 1; i < count; ++i) marks += ", " + mark;
  return marks;
}

std::string PrefixPattern(std::string_view prefix) {
  std::string pattern;
  for (const char c : prefix) {
    if (c == '%' || c == '_' || c == '!') pattern += '!';
    pattern += c;
  }
  return pattern + '%';
}

// Whether times stand there as text, in whatever form of ISO 8601: those forms only agree in the day.
bool KeepsText(const OdbcLink& link, const TableColumn& column) {
  return link.Maker() == DatabaseMaker::SQLite || column.Shown.IsText;
}

struct Span {
  DbValue From, Behind;
  Date Start = 0, End = 0;
};

// All that may stand for one second: a stored fraction is rounded.
Span SpanAround(Date time, bool asText) {
  const std::int64_t second = SecondsOf(time);
  const auto dateAt = [](std::int64_t at) { return static_cast<double>(at) / SecondsPerDay; };
  if (!asText) {
    const Date start = dateAt(second - 1), end = dateAt(second + 1);
    return {DbDate{start}, DbDate{end}, start, end};
  }
  const auto dayText = [](Date day) { return IsoText(day).substr(0, 10); };
  const Date start = std::floor(dateAt(second - 1)), end = std::floor(dateAt(second)) + 1;
  return {dayText(start), dayText(end), start, end};
}

// A code as it may be stored: bare, or with blanks behind it up to some width.
std::vector<std::string> PaddedCodes(const std::string& code, std::int64_t width) {
  std::vector<std::string> codes;
  const std::size_t column = width > 0 ? static_cast<std::size_t>(width) : MostPadded;
  for (std::size_t size = code.size() + 1; size <= std::min(column, MostPadded); ++size)
    codes.push_back(code + std::string(size - code.size(), ' '));
  if (column > MostPadded && column <= WidestPadded && code.size() < column)
    codes.push_back(code + std::string(column - code.size(), ' '));
  return codes;
}

}  // namespace

Conditions::Conditions(std::shared_ptr<OdbcLink> link, const TableShape& shape,
                       std::vector<Selection::Condition> conditions)
    : link_(std::move(link)), shape_(&shape), conditions_(std::move(conditions)) {
  for (const Selection::Condition& condition : conditions_) {
    const DbValue& wanted = condition.Among.empty() ? condition.Wanted : condition.Among.front();
    if (!std::holds_alternative<DbDate>(wanted)) continue;
    checked_.push_back(*shape.Find(condition.Column));
    Time& time = times_.emplace_back(Time{condition.How, {}});
    for (const DbValue& value : condition.Among) time.Seconds.push_back(SecondsOf(DateOf(value)));
    if (condition.Among.empty()) time.Seconds.push_back(SecondsOf(DateOf(wanted)));
    std::ranges::sort(time.Seconds);
  }
}

bool Conditions::Allows(std::size_t at, Date time) const {
  const Time& wanted = times_[at];
  const std::int64_t second = SecondsOf(time);
  switch (wanted.How) {
    case Compare::AtLeast:
      return second >= wanted.Seconds.front();
    case Compare::AtMost:
      return second <= wanted.Seconds.front();
    default:
      return std::ranges::binary_search(wanted.Seconds, second);
  }
}

void Conditions::AddValue(DbValue value, const TableColumn& column) {
  values_.emplace_back(std::move(value), column.SqlType);
}

std::string Conditions::TimesText(const std::string& column, const TableColumn& shape,
                                  const Selection::Condition& condition) {
  std::string text;
  const bool asText = KeepsText(*link_, shape);
  std::vector<Span> spans;
  for (const DbValue& time : condition.Among.empty() ? std::vector{condition.Wanted} : condition.Among)
    spans.push_back(SpanAround(DateOf(time), asText));
  std::ranges::sort(spans, {}, &Span::Start);
  const auto add = [&](const char* compare, DbValue value) {
    text += (text.empty() || text.ends_with('(') ? "" : " AND ") + column + compare;
    AddValue(std::move(value), shape);
  };
  // One span over all of them comes first: that is what an index takes.
  if (condition.How != Compare::AtMost) add(" >= ?", spans.front().From);
  if (condition.How != Compare::AtLeast) add(" < ?", spans.back().Behind);
  std::vector<Span> apart;
  for (Span& span : spans) {
    if (!apart.empty() && span.Start <= apart.back().End)
      apart.back().Behind = std::move(span.Behind), apart.back().End = span.End;
    else
      apart.push_back(std::move(span));
  }
  if (apart.size() == 1 || apart.size() > MostSpans) return text;
  text += " AND (";
  for (const Span& span : apart) {
    text += text.ends_with('(') ? "(" : " OR (";
    add(" >= ?", span.From);
    add(" < ?", span.Behind);
    text += ")";
  }
  return text + ")";
}

// A column of fixed width holds codes with blanks behind them, which some databases compare and others don't.
// That is rare, so it is asked first whether there is such a code: a search for one code alone is the
// quicker.
DbResult<bool> Conditions::AnyPadded(const std::string& upper, const TableColumn& shape,
                                     const std::string& code, const std::vector<std::string>& padded) const {
  const std::string key = shape_->Name + upper + code;
  if (const auto known = link_->HasPadded.find(key); known != link_->HasPadded.end()) return known->second;
  auto probe = Statement::Prepared(link_, "SELECT 1 FROM " + shape_->Name + " WHERE " + upper + " IN (" +
                                              Marks("UPPER(?)", padded.size()) + ") LIMIT 1");
  if (!probe) return tl::unexpected(probe.error());
  std::vector<Parameter> parameters(padded.size());
  for (std::size_t i = 0; i < padded.size(); ++i) parameters[i].Set(padded[i], link_->Maker(), shape.SqlType);
  if (const auto bound = probe->Bind(parameters); !bound) return tl::unexpected(bound.error());
  if (const auto asked = probe->Execute(); !asked) return tl::unexpected(asked.error());
  const auto found = probe->Fetch();
  if (!found) return tl::unexpected(found.error());
  return link_->HasPadded[key] = *found;
}

DbResult<void> Conditions::AddCode(std::string& text, const std::string& column, const TableColumn& shape,
                                   const std::string& code) {
  const std::string upper = "UPPER(" + column + ")";
  std::vector<std::string> codes;
  // Others compare without the blanks, and PostgreSQL does where the type itself says that there may be some.
  const bool isFixed = shape.SqlType == SQL_CHAR || shape.SqlType == SQL_WCHAR;
  const DatabaseMaker maker = link_->Maker();
  if (maker == DatabaseMaker::SQLite || (maker == DatabaseMaker::PostgreSQL && !isFixed))
    codes = PaddedCodes(code, shape.Shown.Size);
  if (!codes.empty()) {
    const auto any = AnyPadded(upper, shape, code, codes);
    if (!any) return tl::unexpected(any.error());
    if (!*any) codes.clear();
  }
  codes.push_back(code);
  text += codes.size() == 1 ? upper + " = UPPER(?)" : upper + " IN (" + Marks("UPPER(?)", codes.size()) + ")";
  for (std::string& each : codes) AddValue(std::move(each), shape);
  return {};
}

DbResult<std::string> Conditions::Text() {
  std::string text;
  values_.clear();
  for (const Selection::Condition& condition : conditions_) {
    const TableColumn& shape = shape_->Columns[*shape_->Find(condition.Column)];
    const std::string column = link_->Quoted(shape.Shown.Name);
    const bool one = condition.Among.empty();
    const DbValue& wanted = one ? condition.Wanted : condition.Among.front();
    if (!text.empty()) text += " AND ";
    if (one && IsNull(wanted)) {
      text += column + " IS NULL";
    } else if (std::holds_alternative<DbDate>(wanted)) {
      text += TimesText(column, shape, condition);
    } else if (condition.How == Compare::EqualIgnoringCase && shape.Shown.IsText) {
      const std::string code = TextOf(wanted);
      const auto added = AddCode(text, column, shape, code.substr(0, code.find_last_not_of(' ') + 1));
      if (!added) return tl::unexpected(added.error());
    } else {
      const std::size_t count = one ? 1 : condition.Among.size();
      switch (condition.How) {
        case Compare::EqualIgnoringCase:
          text += "UPPER(" + column + ") = UPPER(?)";
          break;
        case Compare::BeginsWith:
          text += "UPPER(" + column + ") LIKE UPPER(?) ESCAPE '!'";
          break;
        case Compare::AtLeast:
          text += column + " >= ?";
          break;
        case Compare::AtMost:
          text += column + " <= ?";
          break;
        case Compare::Equal:
        case Compare::OneOf:
          text += column + (count == 1 ? " = ?" : " IN (" + Marks("?", count) + ")");
          break;
      }
      if (condition.How == Compare::BeginsWith)
        values_.emplace_back(PrefixPattern(TextOf(wanted)), SQL_VARCHAR);
      else
        for (std::size_t i = 0; i < count; ++i) AddValue(one ? wanted : condition.Among[i], shape);
    }
  }
  return text;
}

std::vector<Parameter> Conditions::Parameters() const {
  std::vector<Parameter> parameters(values_.size());
  for (std::size_t i = 0; i < values_.size(); ++i)
    parameters[i].Set(values_[i].first, link_->Maker(), values_[i].second);
  return parameters;
}

// Rows behind a key: by its first column or, where that is alike, by the rest. The first column alone stands
// ahead, since that is what an index takes.
std::string BeyondText(std::span<const OrderColumn> order, std::span<const DbValue> key, bool behind,
                       DatabaseMaker maker, std::vector<Parameter>& parameters) {
  const OrderColumn& column = order.front();
  const auto add = [&] { parameters.emplace_back().Set(key.front(), maker, column.Type); };
  const bool isLast = order.size() == 1;
  // PostgreSQL has rows without a value behind all others, the rest have them ahead.
  const bool nullsBeyond = behind == (maker == DatabaseMaker::PostgreSQL);
  const auto rest = [&] { return BeyondText(order.subspan(1), key.subspan(1), behind, maker, parameters); };
  if (IsNull(key.front())) {
    const std::string others = nullsBeyond ? "" : column.Name + " IS NOT NULL";
    if (isLast) return others.empty() ? "1 = 0" : others;
    const std::string same = "(" + column.Name + " IS NULL AND " + rest() + ")";
    return others.empty() ? same : "(" + others + " OR " + same + ")";
  }
  const std::string compare = behind ? " > " : " < ";
  if (isLast) {
    add();
    const std::string beyond = column.Name + compare + "?";
    return nullsBeyond && column.MayBeNull ? "(" + beyond + " OR " + column.Name + " IS NULL)" : beyond;
  }
  const std::string index =
      nullsBeyond && column.MayBeNull ? "" : column.Name + (behind ? " >= ?" : " <= ?") + " AND ";
  if (!index.empty()) add();
  add();
  std::string text = index + "(" + column.Name + compare + "?";
  if (nullsBeyond && column.MayBeNull) text += " OR " + column.Name + " IS NULL";
  add();
  text += " OR (" + column.Name + " = ? AND " + rest() + "))";
  return text;
}

std::string RowsText(std::span<const RowPlace> rows, DatabaseMaker maker,
                     std::vector<Parameter>& parameters) {
  for (const RowPlace& row : rows)
    for (std::size_t i = 0; i < row.Values.size(); ++i)
      if (!IsNull(row.Values[i])) parameters.emplace_back().Set(row.Values[i], maker, row.Types[i]);
  // The common case, which no depth of an expression limits.
  const auto isNumber = [](const RowPlace& row) {
    return row.Columns.size() == 1 && !IsNull(row.Values.front());
  };
  if (rows.size() > 1 && std::ranges::all_of(rows, isNumber))
    return rows.front().Columns.front() + " IN (" + Marks("?", rows.size()) + ")";
  std::string text;
  for (const RowPlace& row : rows) {
    std::string one;
    for (std::size_t i = 0; i < row.Columns.size(); ++i)
      one += (one.empty() ? "" : " AND ") + row.Columns[i] + (IsNull(row.Values[i]) ? " IS NULL" : " = ?");
    text += (text.empty() ? "(" : " OR (") + one + ")";
  }
  return text;
}

}  // namespace hyetex
