#include "app/forms.h"

#include "app/main_form.h"
#include "core/setup.h"
#include "core/window_memory.h"

namespace norvik {

Forms_State Forms;

namespace {

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
}

void Show_Open_Forms() {
  Show_If(Form_Id::CNC_Controls, false);
  Show_If(Form_Id::Plot, false);
  Show_If(Form_Id::GCode, false);
}

}  // namespace norvik
