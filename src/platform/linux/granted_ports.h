// granted_ports.h: the right to ports that norvik-port has handed over, and rights that no program
// of ours should have.
#pragma once

#include <bitset>
#include <string>

namespace norvik {

// The addresses that norvik-port granted to this process before it became this program; none where
// it was started otherwise. The environment is believed only with this process's own number in it.
std::bitset<65536> Granted_Ports();

// Words for the operator when the program itself was given capabilities or a user: whatever plugin
// or library it loads would have them too. Empty when it runs with the rights of its user.
std::string Words_About_Own_Rights();

// "... start it through ..." with the command, for messages about a right that is missing.
std::string Helper_Words();

}  // namespace norvik
