// folder_lock.h: one writer of settings at a time in a folder, over all programs of this computer.
//
// A writer reads the file again under the lock, changes what it has to change and replaces the
// file; so two of them never take each other's lines back. The lock is on the folder, so that
// nothing is left beside the file and a replaced file stays locked. It ends with the process.
#pragma once

#include <string>

namespace norvik {

class Folder_Lock {
 public:
  // Locks the folder in which the file lies, behind links. Locks of one process on one folder may
  // stand inside one another. Waits up to a second for another program, then raises a file fault
  // that says what to do. A folder that cannot be locked, because it is missing or its disk knows
  // no locks, is left without one.
  explicit Folder_Lock(const std::string& file);
  ~Folder_Lock();
  Folder_Lock(const Folder_Lock&) = delete;
  Folder_Lock& operator=(const Folder_Lock&) = delete;

 private:
  std::string Folder;  // empty: not locked
};

}  // namespace norvik
