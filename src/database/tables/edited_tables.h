// The tables whose single rows operators edit: one description for each, from which one editor is made.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace hyetex {

struct EditedTable {
  std::string_view Entry;   ///< in the list of tables, odd capitals included
  std::string_view Window;  ///< its name, under which its place is remembered
  std::string_view Title;
  std::string_view Table;    ///< in the database
  std::string_view Columns;  ///< in the order of their boxes, with blanks between; empty: all of the schema
  std::string_view OrderBy = {};  ///< a column; empty: the table's own order
  std::string_view FindBy;        ///< the column of texts by which a row is looked for
  bool ShowsGrid = false;         ///< the rows stand in a grid, too
  /// The rows are shown for one row of another table at a time: those that have its value in the column of
  /// this name.
  std::string_view Master = {}, MasterColumn = {};

  bool HasMaster() const { return !Master.empty(); }
};

/// In the order of the list, which names one table twice.
std::span<const EditedTable> EditedTables();

std::vector<std::string> ColumnsOf(const EditedTable& table);

}  // namespace hyetex
