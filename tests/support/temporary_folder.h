// temporary_folder.h: a folder that lives as long as a test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace norvik {

struct Temporary_Folder {
  Temporary_Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "norvik_test_XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("No temporary folder");
    Path = name;
  }
  ~Temporary_Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(Path, ignored);
  }
  Temporary_Folder(const Temporary_Folder&) = delete;
  Temporary_Folder& operator=(const Temporary_Folder&) = delete;

  std::string File(const std::string& name) const { return Path + "/" + name; }

  std::string Path;
};

}  // namespace norvik
