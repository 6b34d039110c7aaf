// A program folder of its own for each fuzzer that reads a whole file of it.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace hyetex::fuzz {

class ProgramFolder {
 public:
  ProgramFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "hyetex-fuzz-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) std::abort();
    path_ = name;
  }
  ProgramFolder(const ProgramFolder&) = delete;
  ProgramFolder& operator=(const ProgramFolder&) = delete;
  ~ProgramFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }

  const std::string& Path() const { return path_; }
  /// Empties the folder but for one file with these bytes.
  void Hold(std::string_view name, std::string_view bytes) const {
    for (const auto& entry : std::filesystem::directory_iterator(path_)) std::filesystem::remove_all(entry);
    std::FILE* file = std::fopen((path_ + "/" + std::string(name)).c_str(), "wb");
    if (file == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) std::abort();
    std::fclose(file);
  }

 private:
  std::string path_;
};

inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Ends the fuzzer where something does not hold that always must.
inline void Must(bool holds) {
  if (!holds) std::abort();
}

}  // namespace hyetex::fuzz
