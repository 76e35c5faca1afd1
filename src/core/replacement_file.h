// replacement_file.h: a file that takes the place of another only once it is whole.
//
//   Replacement_File file(path);      // a temporary neighbour of `path`
//   file.Write(...);                  // as often as wanted
//   file.Commit(Flush_To_Disk::Yes);  // now it is `path`
//
// Until `Commit` has returned, and when anything fails or the object goes without it, the file of
// before stands as it was. A link is followed, so that it survives. What is no regular file (a
// device, a pipe) has no neighbour and is written directly.
//
// Constructor, `Write` and `Commit` raise a file fault whose text says what is wrong and what to
// do.
#pragma once

#include <string>
#include <string_view>

namespace norvik {

// A file that the user would miss is flushed, so that a power cut leaves the old or the new one; a
// file that can be made again is not.
enum class Flush_To_Disk { No, Yes };

class Replacement_File {
 public:
  explicit Replacement_File(const std::string& path);
  ~Replacement_File();
  Replacement_File(const Replacement_File&) = delete;
  Replacement_File& operator=(const Replacement_File&) = delete;

  void Write(std::string_view bytes);
  void Commit(Flush_To_Disk flush);

 private:
  std::string Target;
  std::string Neighbour;  // empty: none, or it has become the target
  unsigned Rights = 0;    // of the new file: those of the old one, or the usual ones
  int File = -1;
};

}  // namespace norvik
