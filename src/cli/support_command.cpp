// The command `support`.
#include "app/support_packet.h"
#include "cli/companion.h"
#include "control/panel/drive_choice.h"
#include "core/fault.h"

#include <iostream>
#include <memory>

namespace norvik {

namespace {

int Write_Packet(const std::string& path) {
  Choose_Drive_By_Setup();
  const std::vector<Packet_File> files = Support_Packet("Companion, without windows.\n");
  try {
    Write_Support_Packet(path, files);
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
  for (const Packet_File& file : files) {
    std::cerr << file.Entry.Name << ": " << file.What << '\n';
  }
  std::cerr << "Saved " << path << ". Folders outside the program's own are blanked.\n";
  return Done;
}

}  // namespace

void Add_Support_Command(CLI::App& app, Companion& companion) {
  CLI::App* support =
      app.add_subcommand("support", "Everything that somebody who helps asks for, as one zip file");
  const auto path = std::make_shared<std::string>();
  support->add_option("-o", *path, "The zip file to write")->required()->type_name("FILE.zip");
  support->callback(
      [&companion, path] { companion.Command = [path] { return Write_Packet(*path); }; });
}

}  // namespace norvik
