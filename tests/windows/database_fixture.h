// A program folder with the sample lists whose database is a file, for the tests of windows that show it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "database/access/new_database.h"
#include "database/access/plot_db.h"
#include "paths.h"
#include "windows/support.h"

namespace hyetex::test {

class DatabaseFolderTest : public FolderTest {
 protected:
  DatabaseFolderTest() {
    std::filesystem::copy(Demo("program"), folder_.Path());
    EXPECT_TRUE(CreateDatabaseFile(folder_ / "rain.sqlite"));
    text_ = FileConnectionText(folder_ / "rain.sqlite").value_or("");
    Remember("DataBaseName", text_.c_str());
  }
  void Execute(const std::string& sql, std::vector<DbValue> values = {}) {
    auto connection = Connection::Open(text_);
    ASSERT_TRUE(connection) << connection.error().Description;
    EXPECT_TRUE(connection->Execute(sql, values)) << sql;
  }

  std::string text_;  ///< of the connection
};

}  // namespace hyetex::test
