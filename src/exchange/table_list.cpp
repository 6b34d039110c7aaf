#include "exchange/table_list.h"

#include <algorithm>
#include <filesystem>

#include "core/files.h"
#include "core/text.h"
#include "database/access/schema.h"

namespace hyetex {

DbResult<std::vector<std::string>> TablesThere(Connection& connection) {
  const auto tables = connection.Tables();
  if (!tables) return tl::unexpected(tables.error());
  std::vector<std::string> names(WholeDatabase.begin(), WholeDatabase.end());
  const auto isNamed = [](const std::vector<std::string>& list, std::string_view name) {
    return std::ranges::any_of(list, [&](const std::string& each) { return EqualIgnoringCase(each, name); });
  };
  for (const SchemaTable& table : SchemaTables())
    if (!isNamed(names, table.Name)) names.push_back(LowerAscii(table.Name));
  names.push_back(LowerAscii(ConversionTable().Name));
  std::erase_if(names, [&](const std::string& name) {
    return std::ranges::none_of(
        *tables, [&](const CatalogTable& table) { return EqualIgnoringCase(table.Name, name); });
  });
  return names;
}

std::string XmlFileName(std::string_view table) { return std::string(table) + ".xml"; }

std::string FindXmlFile(const std::string& folder, std::string_view table) {
  const std::string name = XmlFileName(table);
  std::string path = JoinPath(folder, name);
  if (FileExists(path)) return path;
  std::error_code error;
  for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
    if (EqualIgnoringCase(at->path().filename().string(), name) && FileExists(at->path().string()))
      return at->path().string();
  return {};
}

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

}  // namespace hyetex
