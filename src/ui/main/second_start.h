// second_start.h: a second start of the program hands its file to the window that is open.
//
// The first start listens on the socket `Norvik.socket` of the working folder, which both have
// entered and which only their user may use; the second sends the full path of its file and ends.
#pragma once

#include <functional>
#include <string>

class QObject;

namespace norvik {

// True when a window took the file; false when none listens.
bool Hand_To_First_Start(const std::string& file);

// Calls `open` from the event loop with each file that a later start hands over, as long as `owner`
// lives. Where no socket can be made a second start only says that Norvik is running. Raises
// nothing.
void Listen_For_Second_Starts(QObject& owner, std::function<void(const std::string& file)> open);

}  // namespace norvik
