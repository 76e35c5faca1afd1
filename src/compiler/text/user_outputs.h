// user_outputs.h: the M codes that switch the user's output.
#pragma once

#include <string>
#include <string_view>

namespace norvik {

// As the setup spells them, with their keys: one pair is for the parallel port, one for boards.
struct User_Output_Texts {
  std::string High, Low;
  std::string_view High_Key, Low_Key;
};
User_Output_Texts User_Outputs_Of_Setup();

}  // namespace norvik
