#include "app/forms.h"

#include "app/main_form.h"
#include "core/setup.h"
#include "core/window_memory.h"

namespace norvik {

Forms_State Forms;

namespace {

// True when the machine file says of one of the three whether it was open: a layout that holds
// then, even one with the plot alone. A file without a layout shows all three; a newcomer would
// stand before an empty frame otherwise.
bool Has_Layout() {
  return Form_Was_Open(Form_Id::CNC_Controls) || Form_Was_Open(Form_Id::Plot) ||
         Form_Was_Open(Form_Id::GCode);
}

void Show_If(Form_Id form, bool otherwise) {
  if (Form_Was_Open(form).value_or(otherwise)) Main_Host.Show_Form(form);
}

}  // namespace

void Save_Default_Form_View() {
  std::array<Form_View, All_Forms.size()> views;
  for (const Form_Id form : All_Forms) {
    views[static_cast<std::size_t>(form)] = Main_Host.View_Of(form);
  }
  Write_Form_Views(views);
}

void UnLoad_Forms() {
  Forms.Plot_Was_Open = Main_Host.View_Of(Form_Id::Plot).Visible;
  Forms.GCode_Was_Open = Main_Host.View_Of(Form_Id::GCode).Visible;
  Forms.CNC_Controls_Was_Open = Main_Host.View_Of(Form_Id::CNC_Controls).Visible;
  Forms.Simulated_Machine_Was_Open = Main_Host.View_Of(Form_Id::Simulated_Machine).Visible;
  Forms.JogKey_Was_Open = Main_Host.View_Of(Form_Id::JogKey).Visible;
  Forms.Port_IO_Was_Open = Main_Host.View_Of(Form_Id::Port_IO).Visible;
  for (const Form_Id form : {Form_Id::Plot, Form_Id::GCode, Form_Id::CNC_Controls, Form_Id::JogKey,
                             Form_Id::Port_IO, Form_Id::Simulated_Machine}) {
    Main_Host.Unload_Form(form);
  }
  Main_Host.Unload_Setup_Windows();
}

void ReLoad_Forms() {
  Main_Host.Place_Main(Read_Form_Place(Form_Id::Main));
  Show_If(Form_Id::CNC_Controls, Forms.CNC_Controls_Was_Open);
  Show_If(Form_Id::Plot, Forms.Plot_Was_Open);
  Show_If(Form_Id::GCode, Forms.GCode_Was_Open);
  Show_If(Form_Id::Simulated_Machine, Forms.Simulated_Machine_Was_Open);
  Show_If(Form_Id::Port_IO, Forms.Port_IO_Was_Open);
  Show_If(Form_Id::JogKey, Forms.JogKey_Was_Open);
}

void Show_Open_Forms() {
  const bool first_time = !Has_Layout();
  // The last one has the focus: never the window whose keys move the machine.
  Show_If(Form_Id::Port_IO, false);
  Show_If(Form_Id::JogKey, false);
  Show_If(Form_Id::CNC_Controls, first_time);
  Show_If(Form_Id::Plot, first_time);
  Show_If(Form_Id::GCode, first_time);
}

}  // namespace norvik
