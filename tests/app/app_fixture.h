// app_fixture.h: the whole spine in a folder of its own, with scripted surroundings.
#pragma once

#include "app/connect.h"
#include "app/drive_session.h"
#include "app/folders.h"
#include "app/forms.h"
#include "app/gcode_form.h"
#include "app/main_form.h"
#include "app/program_findings.h"
#include "app/session_mark.h"
#include "app/startup.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/recent_files.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace norvik {

struct App_Test : testing::Test {
  App_Test() {
    Reset_App();
    Connect_App();
    Use_Folders({Folder.File("work"), Folder.File("config")});
    Record_Windows();
  }
  ~App_Test() override { Reset_App(); }

  // Every call of the windows, in order.
  void Record_Windows() {
    const auto note = [this](std::string what, Form_Id form) {
      Trace.push_back(std::move(what) + " " + std::string(Form_Name(form)));
    };
    Main_Host.Show_Form = [=, this](Form_Id form) {
      note("show", form);
      Open[static_cast<std::size_t>(form)] = {{15, 30, 300, 400, 0}, true, true};
    };
    Main_Host.Unload_Form = [=, this](Form_Id form) {
      note("unload", form);
      Open[static_cast<std::size_t>(form)].Visible = false;
    };
    Main_Host.Focus_Form = [=](Form_Id form) { note("focus", form); };
    Main_Host.View_Of = [this](Form_Id form) { return Open[static_cast<std::size_t>(form)]; };
    Main_Host.Place_Main = [this](const Window_Place&) { Trace.push_back("place Main"); };
    Main_Host.Unload_Other_Windows = [this] { Trace.push_back("unload others"); };
  }

  std::string Write_File(const std::string& name, const std::string& text) {
    Replace_File(Folder.File(name), text);
    return Folder.File(name);
  }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
  std::vector<std::string> Trace;
  std::array<Form_View, All_Forms.size()> Open;
};

}  // namespace norvik
