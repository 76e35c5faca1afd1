// welcome.h: what is offered at the first start.
//
// `Show_Welcome` of section `Platform` of the pointer file: True or False; where it is missing, the
// welcome is shown when there was no pointer file.
#pragma once

namespace norvik {

bool Shows_Welcome();
void Set_Shows_Welcome(bool shows);

// Asks for a program, or for a file of any kind that can be imported, and opens it.
void Welcome_Open_Program();
void Welcome_Import_Drawing();

}  // namespace norvik
