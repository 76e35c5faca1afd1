// replacement_file.h: a file that takes the place of another only once it is whole.
//
//   Replacement_File file(path);      // a temporary neighbour of `path`
//   file.Write(...);                  // as often as wanted
//   file.Commit(Flush_To_Disk::Yes);  // now it is `path`
//
// Until `Commit` has returned, and when anything fails or the object goes without it, the file of
// before stands as it was. Mode and owner stay, also when root saves a file of a user. A symbolic
// link is followed, so that it survives. A file with several names, or of an owner that cannot be
// given to a new file, stays the same file: it gets the content of the whole neighbour in one go.
// What is no regular file (a device, a pipe) has no neighbour and is written directly. Neighbours
// that killed programs have left in the folder are taken away (core/working_name.h).
//
// Constructor, `Write` and `Commit` raise a file fault whose text says what is wrong and what to
// do.
#pragma once

#include <cstdint>
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
  void Make_Neighbour();
  void Keep_Owner(unsigned owner, unsigned group, std::uint64_t names);
  void Copy_Into_Target();

  std::string Target;
  std::string Neighbour;  // empty: none, or it has become the target
  unsigned Rights = 0;    // of the new file: those of the old one, or the usual ones
  bool Stays = false;     // the target itself takes the new content
  int File = -1;
};

}  // namespace norvik
