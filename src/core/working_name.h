// working_name.h: files and folders that exist only while a piece of work lasts.
//
// They lie beside what they become, under the name ".norvik-" and six characters, and their maker
// keeps them locked. So what a killed program has left is told from what another one needs, and the
// next work in that folder takes it away.
#pragma once

#include <string>

namespace norvik {

// For mkstemp and mkdtemp: a working name in the folder.
std::string Working_Name_In(const std::string& folder);

// Takes away what programs of this user have left in the folder: unlocked and older than a minute,
// where the disk knows no locks older than a day. Files of others and links stay. Raises nothing.
void Collect_Leftovers(const std::string& folder) noexcept;

// A folder for one piece of work, gone with everything in it when the object goes.
class Working_Folder {
 public:
  // Makes it in `parent`, after collecting what was left there. Raises a file fault.
  explicit Working_Folder(const std::string& parent);
  ~Working_Folder();
  Working_Folder(const Working_Folder&) = delete;
  Working_Folder& operator=(const Working_Folder&) = delete;

  const std::string& Path() const { return Place; }

 private:
  std::string Place;
  int Lock = -1;
};

}  // namespace norvik
