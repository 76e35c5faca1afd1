#include "compiler/text/user_outputs.h"

#include "core/setup.h"

namespace norvik {

User_Output_Texts User_Outputs_Of_Setup() {
  const Machine_Setup& setup = MachineSetup;
  if (setup.Parallel_Port_Type == 1) {
    return {setup.Parallel_MCode_High[0], setup.Parallel_MCode_Low[0], "Parallel_MCode_High_0",
            "Parallel_MCode_Low_0"};
  }
  return {setup.Dravon_MCode_High[0], setup.Dravon_MCode_Low[0], "Dravon_MCode_High_0",
          "Dravon_MCode_Low_0"};
}

}  // namespace norvik
