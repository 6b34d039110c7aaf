#include "platform/odbc/environment.h"

#include <array>

#include "core/text.h"
#include "platform/odbc/odbc_link.h"

namespace hyetex {
namespace {

// An environment of the driver manager, without a connection.
class Environment {
 public:
  Environment() {
    if (!SQL_SUCCEEDED(::SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &handle_))) handle_ = SQL_NULL_HENV;
    if (handle_ == SQL_NULL_HENV) return;
    ::SQLSetEnvAttr(handle_, SQL_ATTR_ODBC_VERSION, SqlNumber(SQL_OV_ODBC3), 0);
  }
  ~Environment() {
    if (handle_ != SQL_NULL_HENV) ::SQLFreeHandle(SQL_HANDLE_ENV, handle_);
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  // Calls `take(name, description)` for all that a listing function gives.
  template <typename List, typename Take>
  void ForEach(List list, Take&& take) {
    if (handle_ == SQL_NULL_HENV) return;
    std::array<SQLCHAR, 1024> name{}, description{};
    SQLSMALLINT nameLength = 0, descriptionLength = 0;
    for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
      name[0] = description[0] = 0;
      if (!SQL_SUCCEEDED(list(handle_, direction, name.data(), SQLSMALLINT{1024}, &nameLength,
                              description.data(), SQLSMALLINT{1024}, &descriptionLength)))
        return;
      const auto text = [](const auto& bytes) {
        return std::string(reinterpret_cast<const char*>(bytes.data()));
      };
      if (!Trim(text(name)).empty()) take(text(name), text(description));
    }
  }

 private:
  SQLHENV handle_ = SQL_NULL_HENV;
};

}  // namespace

std::vector<NameAndDriver> RegisteredDataSources() {
  std::vector<NameAndDriver> sources;
  Environment environment;
  environment.ForEach(::SQLDataSources, [&](std::string name, std::string driver) {
    sources.push_back({std::move(name), std::move(driver)});
  });
  return sources;
}

std::vector<std::string> RegisteredDrivers() {
  std::vector<std::string> drivers;
  Environment environment;
  environment.ForEach(::SQLDrivers,
                      [&](std::string name, const std::string&) { drivers.push_back(std::move(name)); });
  return drivers;
}

}  // namespace hyetex
