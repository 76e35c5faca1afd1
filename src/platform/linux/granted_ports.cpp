#include "platform/linux/granted_ports.h"

#include "platform/linux/program_path.h"

#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string_view>

#include <sys/auxv.h>
#include <unistd.h>

namespace norvik {

namespace {

// A whole number; absent for any other text.
std::optional<unsigned> Number_In(std::string_view text, int base) {
  unsigned value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string_view Before(std::string_view text, char mark) {
  return text.substr(0, text.find(mark));
}
std::string_view Behind(std::string_view text, char mark) {
  const std::size_t place = text.find(mark);
  return place == std::string_view::npos ? std::string_view() : text.substr(place + 1);
}

std::string Helper_Path() {
  const std::string program = Program_Path();
  const std::string folder = program.substr(0, program.rfind('/') + 1);
  const std::string built = folder + "../port_helper/norvik-port";
  return ::access(built.c_str(), X_OK) == 0 ? built : folder + "norvik-port";
}

}  // namespace

std::bitset<65536> Granted_Ports() {
  std::bitset<65536> granted;
  const char* given = std::getenv("NORVIK_PORTS");
  const std::string_view text = given != nullptr ? given : "";
  if (Number_In(Before(text, ':'), 10) != static_cast<unsigned>(::getpid())) return granted;
  for (std::string_view rest = Behind(text, ':'); !rest.empty(); rest = Behind(rest, ',')) {
    const std::string_view range = Before(rest, ',');
    const auto first = Number_In(Before(range, '-'), 16), last = Number_In(Behind(range, '-'), 16);
    if (!first || !last) continue;
    for (unsigned port = *first; port <= *last && port < granted.size(); ++port) granted.set(port);
  }
  return granted;
}

std::string Words_About_Own_Rights() {
  if (::getauxval(AT_SECURE) == 0) return {};
  return "This program was given capabilities, and whatever plugin a user lets it load would have "
         "them too. Take them away with the command \"sudo setcap -r " +
         Program_Path() + "\" and " + Helper_Words();
}

std::string Helper_Words() {
  return "give the right to the port to the helper, once, with the command \"sudo setcap "
         "cap_sys_rawio,cap_sys_resource+ep " +
         Helper_Path() + "\", and start the program through it: \"" + Helper_Path() + " " +
         Program_Path().substr(Program_Path().rfind('/') + 1) + "\".";
}

}  // namespace norvik
