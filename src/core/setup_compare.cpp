#include "core/setup_compare.h"

#include "core/fault.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "core/scope.h"
#include "core/setup.h"
#include "core/setup_keys.h"

namespace norvik {

namespace {

std::vector<std::string> Texts(const std::vector<Setup_Key>& keys) {
  std::vector<std::string> texts;
  for (const Setup_Key& key : keys) texts.push_back(Setup_Text(*key.Row, key.Index));
  return texts;
}

std::vector<std::string> Texts_Of_File(const std::string& path,
                                       const std::vector<Setup_Key>& keys) {
  const Value_In_Scope kept(MachineSetup, Machine_Setup());
  const Profile_Session file(path, Profile_Use::Reading);
  for (const Setup_Key& key : keys) {
    const std::string name = Setting_Key(*key.Row, key.Index);
    Read_Setup_Text(*key.Row, key.Index, Read_Profile(path, key.Row->Section, name));
  }
  return Texts(keys);
}

}  // namespace

std::vector<Setup_Difference> Compare_Setup_With(const std::string& path) {
  if (!FileExists(path)) {
    throw Fault(Fault_Number::File_Not_Found, "There is no file " + path);
  }
  const std::vector<Setup_Key> keys = Setup_Keys();
  const std::vector<std::string> here = Texts(keys), there = Texts_Of_File(path, keys);
  std::vector<Setup_Difference> differences;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (here[i] == there[i]) continue;
    differences.push_back(
        {Setup_Full_Name(keys[i]), Setting_Label(*keys[i].Row, keys[i].Index), here[i], there[i]});
  }
  return differences;
}

}  // namespace norvik
