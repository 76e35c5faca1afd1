#include "core/beside_machine.h"

#include "core/application.h"
#include "core/paths.h"

#include <filesystem>

namespace norvik {

std::string Beside_Machine_File(const std::string& name) {
  if (name.empty() || std::filesystem::path(name).is_absolute() || FileExists(name)) return name;
  const std::string folder = PathDirectory(Application.MachineFile);
  if (folder.empty()) return name;
  std::string beside = Join_Path(folder, name);
  return FileExists(beside) ? beside : name;
}

}  // namespace norvik
