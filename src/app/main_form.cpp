#include "app/main_form.h"

#include "core/paths.h"

namespace norvik {

Main_Form_Record Main_Form;
Main_Host_Operations Main_Host;

void Set_Caption(const std::string& path, std::string_view before) {
  Main_Form.Caption = std::string(before) + PathFileName(path);
  Main_Host.Caption_Changed();
}

}  // namespace norvik
