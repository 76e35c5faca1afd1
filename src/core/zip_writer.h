// zip_writer.h: several files in one, as a zip archive without compression.
//
// By the public application note on the format (PKWARE APPNOTE 6.3): a local header and the bytes
// of each file, then the central directory, then its end. Names are UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Zip_Entry {
  std::string Name, Bytes;
};

// The whole archive, dated with the present local time. Raises an overflow fault beyond 4 GB, which
// the format cannot hold.
std::string Zip_Archive(const std::vector<Zip_Entry>& entries);

}  // namespace norvik
