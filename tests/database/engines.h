// The same tests on every database engine: a class derived from EngineTest gets a fresh, empty database for
// each of its tests.
//
//   class LoadTest : public EngineTest {};
//   HYETEX_ON_ALL_ENGINES(LoadTest);
//   TEST_P(LoadTest, KeepsTheOldRecordWhenTheNewOneFails) { auto connection = Connection::Open(Text()); ... }
//
// PostgreSQL runs as a cluster of its own, on loopback. ctest starts and stops it around the tests that need
// it. To run the test program by hand:
//
//   scripts/postgres start /tmp/cluster              (once; it prints the text to connect with)
//   HYETEX_POSTGRES=/tmp/cluster bin/hyetex_tests --gtest_filter='*LoadTest*'
//   scripts/postgres stop /tmp/cluster
//
// Without the variable the cluster of the build folder is looked for, in postgres/ there. None is a failure.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/odbc/connection.h"
#include "support.h"

namespace hyetex::test {

enum class Engine { SQLite, PostgreSQL };

inline void PrintTo(Engine engine, std::ostream* out) {
  *out << (engine == Engine::SQLite ? "SQLite" : "PostgreSQL");
}

inline std::string EngineName(const ::testing::TestParamInfo<Engine>& engine) {
  return ::testing::PrintToString(engine.param);
}

/// The value of a call that has to succeed.
template <typename T>
T Must(DbResult<T> result) {
  if (!result)
    ADD_FAILURE() << result.error().Number << " " << result.error().State << " "
                  << result.error().Description;
  if constexpr (!std::is_void_v<T>)
    return std::move(result).value();  // throws out of the test where there is none
}

class EngineTest : public ::testing::TestWithParam<Engine> {
 public:
  /// The text that connects to this test's database.
  const std::string& Text() const { return text_; }

 protected:
  void SetUp() override {
    if (GetParam() == Engine::SQLite) {
      WriteFile(Folder / "test.sqlite", "");
      text_ = "Driver=SQLite3;Database=" + (Folder / "test.sqlite") + ";SyncPragma=OFF";
      return;
    }
    const char* chosen = std::getenv("HYETEX_POSTGRES");
    const auto buildFolder = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
    const std::string cluster = chosen != nullptr ? chosen : (buildFolder / "postgres").string();
    server_ = ReadFile(cluster + "/connection");
    ASSERT_FALSE(server_.empty()) << "no PostgreSQL cluster in " << cluster
                                  << ": see tests/database/engines.h";
    server_.pop_back();  // the line's end
    static int count = 0;
    name_ = "test_" + std::to_string(::getpid()) + "_" + std::to_string(++count);
    OnServer("CREATE DATABASE " + name_);
    text_ = server_.substr(0, server_.rfind('=') + 1) + name_;
  }
  void TearDown() override {
    if (!text_.empty() && !name_.empty()) OnServer("DROP DATABASE " + name_ + " WITH (FORCE)");
  }

  /// Runs a statement from outside, as the server's administrator (PostgreSQL only).
  void OnServer(const std::string& sql) {
    auto connection = Must(Connection::Open(server_));
    Must(connection.Execute(sql));
  }
  const std::string& DatabaseName() const { return name_; }

  TempFolder Folder;

 private:
  std::string text_, server_, name_;
};

}  // namespace hyetex::test

/// Runs the tests of a class on all engines; stands behind the class, in its namespace.
#define HYETEX_ON_ALL_ENGINES(TestClass)                                                     \
  INSTANTIATE_TEST_SUITE_P(                                                                  \
      Engines, TestClass,                                                                    \
      ::testing::Values(::hyetex::test::Engine::SQLite, ::hyetex::test::Engine::PostgreSQL), \
      ::hyetex::test::EngineName)
