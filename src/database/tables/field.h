// The boxes of a table editor: what each shows of a value, takes from an operator and stores.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "database/tables/edited_tables.h"
#include "platform/odbc/connection.h"

namespace hyetex {

/// Texts as wide as this get several lines.
inline constexpr std::int64_t LongTextWidth = 75;
/// Bytes. A larger file is not loaded into a picture's column.
inline constexpr std::size_t LargestPicture = 32U << 20;

enum class FieldKind { Text, LongText, Whole, Number, Moment, Picture };

struct Field {
  std::string Column;  ///< as the database spells it
  std::string Label;   ///< the column's name as words
  FieldKind Kind = FieldKind::Text;
  std::int64_t Width = 0;      ///< characters of a text; 0: any number
  double Least = 0, Most = 0;  ///< of a number
};

/// The boxes for the columns that the database has. Fails, with words for the operator, where it lacks some.
Result<std::vector<Field>> FieldsOf(const EditedTable& table, const std::vector<CatalogColumn>& present);

/// What a box shows of a value; nothing (NULL) and an empty text look alike. Texts without the blanks that
/// columns of fixed width add. Not for pictures.
std::string ShownValue(const Field& field, const DbValue& value);
/// Why a text cannot be stored; nothing if it can. An empty one can: it is stored as NULL.
std::optional<std::string> CheckEntry(const Field& field, std::string_view typed);
/// What is stored for a text that CheckEntry takes.
DbValue EnteredValue(const Field& field, std::string_view typed);

/// A day as TypedDate takes it, and behind a blank its time, "HH:MM" or "HH:MM:SS", where it has one.
std::optional<Date> TypedMoment(std::string_view text);

/// The ending for a picture's file by its first bytes, as ".png"; ".bin" for what is none.
std::string_view PictureEnding(std::string_view bytes);

}  // namespace hyetex
