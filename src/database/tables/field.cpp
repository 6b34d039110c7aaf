#include "database/tables/field.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/schema.h"

namespace hyetex {
namespace {

std::string LabelOf(std::string_view column) {
  std::string label(column);
  std::ranges::replace(label, '_', ' ');
  if (!label.empty()) label[0] = UpperAscii(label.substr(0, 1))[0];
  return label;
}

// The schema's type counts, whatever wider one a database has in its place; of a text the database's width.
Field FieldOf(const SchemaColumn& column, const CatalogColumn& present) {
  Field field{.Column = present.Name, .Label = LabelOf(column.Name)};
  const auto range = [&](FieldKind kind, auto limits) {
    field.Kind = kind;
    field.Least = static_cast<double>(limits.lowest());
    field.Most = static_cast<double>(limits.max());
  };
  switch (column.Type) {
    case ColumnType::SmallInt:
      range(FieldKind::Whole, std::numeric_limits<std::int16_t>());
      break;
    case ColumnType::Integer:
      range(FieldKind::Whole, std::numeric_limits<std::int32_t>());
      break;
    case ColumnType::Real:
      range(FieldKind::Number, std::numeric_limits<float>());
      break;
    case ColumnType::Double:
      range(FieldKind::Number, std::numeric_limits<double>());
      break;
    case ColumnType::DateTime:
      field.Kind = FieldKind::Moment;
      break;
    case ColumnType::LongBinary:
      field.Kind = FieldKind::Picture;
      break;
    case ColumnType::VarChar:
    case ColumnType::Other:
      field.Width = present.IsText && present.Size > 0 ? present.Size : column.Size;
      field.Kind = field.Width >= LongTextWidth ? FieldKind::LongText : FieldKind::Text;
      break;
  }
  return field;
}

std::size_t CharacterCount(std::string_view text) {
  const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
  return static_cast<std::size_t>(std::ranges::count_if(text, begins));
}

// The next two digits, which a colon or the end follows.
std::optional<int> TakeTwo(std::string_view& text) {
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  if (text.size() < 2 || !digit(text[0]) || !digit(text[1])) return std::nullopt;
  const int value = (text[0] - '0') * 10 + (text[1] - '0');
  text.remove_prefix(2);
  if (text.empty()) return value;
  if (text.front() != ':' || text.size() == 1) return std::nullopt;
  text.remove_prefix(1);
  return value;
}

std::string Quoted(std::string_view typed) { return "\"" + std::string(Trim(typed)) + "\""; }

}  // namespace

Result<std::vector<Field>> FieldsOf(const EditedTable& table, const std::vector<CatalogColumn>& present) {
  const SchemaTable* schema = FindSchemaTable(table.Table);
  std::vector<Field> fields;
  std::string missing;
  for (const std::string& name : ColumnsOf(table)) {
    const auto found = std::ranges::find_if(
        present, [&](const CatalogColumn& column) { return EqualIgnoringCase(column.Name, name); });
    if (found == present.end())
      missing += (missing.empty() ? "" : ", ") + name;
    else
      fields.push_back(FieldOf(*FindSchemaColumn(*schema, name), *found));
  }
  if (missing.empty()) return fields;
  return Failure("The table " + std::string(table.Table) + " of this database has other columns than its " +
                 "editor: it lacks " + missing + ".");
}

std::string ShownValue(const Field& field, const DbValue& value) {
  if (IsNull(value)) return {};
  if (field.Kind == FieldKind::Moment) {
    const Date date = DateOf(value);
    return date == 0 && std::holds_alternative<std::string>(value) ? TextOf(value) : GeneralDateText(date);
  }
  if (const auto* number = std::get_if<double>(&value))
    return std::abs(*number) < 1e15 ? ShortText(*number) : ExactText(*number);
  std::string text = TextOf(value);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::optional<std::string> CheckEntry(const Field& field, std::string_view typed) {
  const bool isText = field.Kind == FieldKind::Text || field.Kind == FieldKind::LongText;
  if (!isText && Trim(typed).empty()) return std::nullopt;
  switch (field.Kind) {
    case FieldKind::Moment:
      if (TypedMoment(typed)) return std::nullopt;
      return field.Label + ": " + Quoted(typed) +
             " is no date. Type day, month and year, as in 31/12/1999, and behind it a time, as in 14:30, if "
             "there is one.";
    case FieldKind::Whole:
    case FieldKind::Number: {
      const auto number = TypedNumber(typed);
      if (!number) return field.Label + ": " + Quoted(typed) + " is no number. Type a number alone, as 2.5.";
      if (field.Kind == FieldKind::Whole &&
          (*number != std::floor(*number) || *number < field.Least || *number > field.Most))
        return field.Label + " must be a whole number from " + ShortText(field.Least) + " to " +
               ShortText(field.Most) + ".";
      return std::nullopt;  // no typed number is beyond the others' range
    }
    case FieldKind::Text:
    case FieldKind::LongText: {
      const std::size_t length = CharacterCount(typed);
      if (field.Width <= 0 || length <= static_cast<std::size_t>(field.Width)) return std::nullopt;
      return field.Label + " has room for " + std::to_string(field.Width) + " characters; these are " +
             std::to_string(length) + ".";
    }
    case FieldKind::Picture:
      break;
  }
  return std::nullopt;
}

DbValue EnteredValue(const Field& field, std::string_view typed) {
  const bool isText = field.Kind == FieldKind::Text || field.Kind == FieldKind::LongText;
  if (isText ? typed.empty() : Trim(typed).empty()) return {};
  switch (field.Kind) {
    case FieldKind::Moment:
      return DbDate{TypedMoment(typed).value_or(0)};
    case FieldKind::Whole:
      return static_cast<std::int64_t>(TypedNumber(typed).value_or(0));
    case FieldKind::Number:
      return TypedNumber(typed).value_or(0);
    default:
      return std::string(typed);
  }
}

std::optional<Date> TypedMoment(std::string_view text) {
  text = Trim(text);
  const std::size_t blank = text.find(' ');
  const auto day = TypedDate(text.substr(0, blank));
  if (!day || blank == std::string_view::npos) return day;
  std::string_view time = Trim(text.substr(blank));
  int parts[3] = {0, 0, 0};
  int count = 0;
  while (!time.empty() && count < 3) {
    const auto part = TakeTwo(time);
    if (!part) return std::nullopt;
    parts[count++] = *part;
  }
  if (!time.empty() || count < 2 || parts[0] > 23 || parts[1] > 59 || parts[2] > 59) return std::nullopt;
  const CalendarTime at = ToCalendar(*day);
  return MakeDate(at.Year, at.Month, at.Day, parts[0], parts[1], parts[2]);
}

std::string_view PictureEnding(std::string_view bytes) {
  struct Form {
    std::string_view Begin, Ending;
  };
  constexpr Form forms[] = {{"\x89PNG", ".png"}, {"\xFF\xD8", ".jpg"},   {"GIF8", ".gif"},
                            {"BM", ".bmp"},      {{"II*\0", 4}, ".tif"}, {{"MM\0*", 4}, ".tif"}};
  for (const Form& form : forms)
    if (bytes.starts_with(form.Begin)) return form.Ending;
  return ".bin";
}

}  // namespace hyetex
