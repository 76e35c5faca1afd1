// support_packet.h: what somebody who helps needs to see, in one file.
//
// Folders outside the program's own tell about the operator and nothing about the fault: each is
// blanked to "[folder]"; the program's own stand as "[working folder]" and "[settings folder]".
// Names of files stay, and so do devices.
#pragma once

#include "core/zip_writer.h"

#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Packet_File {
  std::string What;  // what it is, for the list that is shown before anything is written
  Zip_Entry Entry;
};

// What goes in, blanked. `surroundings`: further lines about toolkit and display; may be empty.
// What cannot be read stands in the packet with the reason.
std::vector<Packet_File> Support_Packet(const std::string& surroundings);

// The packet as one zip file. Raises a file fault that says what to do; an old file then stays.
void Write_Support_Packet(const std::string& path, const std::vector<Packet_File>& files);

// A text with its folders blanked.
std::string Blank_Folders(std::string_view text);

}  // namespace norvik
