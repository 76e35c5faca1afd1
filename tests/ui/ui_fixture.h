// ui_fixture.h: the desktop's windows, off screen, with the simulated machine and virtual time.
//
// Widgets are found by their names and worked with as a hand would: pressed, typed into, turned
// with the wheel. Time passes in delays and yields only; a yield also serves the toolkit's queue.
#pragma once

#include "app/connect.h"
#include "app/folders.h"
#include "app/forms.h"
#include "app/gcode_form.h"
#include "app/main_form.h"
#include "app/startup.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/recent_files.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/scripted/scripted_platform.h"
#include "plot/plot_form.h"
#include "plot/view.h"
#include "simulate/findings.h"
#include "simulate/simulated_machine.h"
#include "simulate/trail.h"
#include "support/reset.h"
#include "support/temporary_folder.h"
#include "ui/main/main_window.h"
#include "ui/simulated/simulated_window.h"
#include "ui/simulated/top_view.h"
#include "ui/simulated/travel_bar.h"
#include "wiring/port_choice.h"

#include <memory>
#include <string>

#include <QApplication>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <gmock/gmock.h>

namespace norvik {

struct Ui_Test : testing::Test {
  Ui_Test() {
    Forget();
    scripted.Screen_Size = {0, 0, 1600, 1000};
    Connect_App();
    Use_Folders({Folder.File("work"), Folder.File("config")});
    Write_Machine("work/mill.ini");
    Replace_File(Folder.File("config/Norvik.Ini"),
                 "[machine]\nNAME=" + Folder.File("work/mill.ini") +
                     "\n[Platform]\nPort_Access=Simulated\n");
    Start();
  }
  ~Ui_Test() override {
    scripted.On_Yield = [] {};
    Window.reset();
    Forget();
  }

  static void Forget() {
    Reset_App();
    Reset_Simulate();
  }

  static std::string Main_Window_Size(int width, int height) {
    return "[Form Position]\nMain_WindowState=0\nMain_Width=" + std::to_string(width * 15) +
           "\nMain_Height=" + std::to_string(height * 15) + "\n";
  }

  // The sample machine with its pins wired, long travels and no ramps. `more` replaces the place of
  // the main window.
  void Write_Machine(const std::string& name, const std::string& more = "") {
    Replace_File(Folder.File(name),
                 Read_Whole_File(std::string(NORVIK_SAMPLES_FOLDER) + "/inch.ini") +
                     (more.empty() ? Main_Window_Size(1600, 1000) : more));
  }

  // A start of the program.
  void Start() {
    Window = std::make_unique<Main_Frame>();
    Main_Host.Open_Port = [] {
      Use_Simulated_Machine();
      Main_Form.Port_Text = "Port: simulated machine";
    };
    scripted.On_Yield = [] { QCoreApplication::processEvents(); };
    Read_Machine_Name();
    Load_Main();
    Window->Add_Tool_Window("Simulated_Machine", "&Simulated machine",
                            [] { return new Simulated_Window; });
    Window->Start_Is_Over();
    QCoreApplication::processEvents();
  }
  // Its end and another start, as after switching the computer off; `between` may change files.
  void Start_Again(const std::function<void()>& between = [] {}) {
    GCode_Program.Unsaved = false;  // nothing is asked
    Window->close();
    ASSERT_TRUE(scripted.Process_Ended);
    Window.reset();
    Forget();
    scripted.Process_Ended = false;
    Connect_App();
    Use_Folders({Folder.File("work"), Folder.File("config")});
    between();
    Start();
  }

  template <class Kind = QWidget>
  Kind& Find(const QString& name) {
    Kind* found = Window->findChild<Kind*>(name);
    if (found == nullptr) throw std::runtime_error("No widget " + name.toStdString());
    return *found;
  }
  QMdiSubWindow& Frame_Of(const QString& name) {
    auto* frame = qobject_cast<QMdiSubWindow*>(Find(name).parentWidget());
    if (frame == nullptr) throw std::runtime_error("No frame of " + name.toStdString());
    return *frame;
  }
  void Click(const QString& name) {
    auto& widget = Find(name);
    if (!widget.isEnabled()) ADD_FAILURE() << name.toStdString() << " is disabled";
    QTest::mouseClick(&widget, Qt::LeftButton);
  }
  void Choose(const QString& menu_entry) { Find<QAction>(menu_entry).trigger(); }
  QString Text_Of(const QString& name) {
    auto& widget = Find(name);
    return widget.property(widget.inherits("QPlainTextEdit") ? "plainText" : "text").toString();
  }

  // Runs `action` once in the first yield for which `due` holds.
  void In_Yield_When(std::function<bool()> due, std::function<void()> action) {
    scripted.On_Yield = [this, due = std::move(due), action = std::move(action),
                         done = std::make_shared<bool>(false)] {
      QCoreApplication::processEvents();
      if (*done || !due()) return;
      *done = true;
      action();
    };
  }

  // Types a line into the field of Goto in place of what stands there.
  void Type_Goto(const QString& line) {
    auto& field = Find<QLineEdit>("Text_Goto");
    field.selectAll();
    QTest::keyClicks(&field, line);
  }

  std::string Write_Program(const std::string& name, const std::string& text) {
    Replace_File(Folder.File(name), text);
    return Folder.File(name);
  }
  void Open(const std::string& name, const std::string& text) {
    GCode_Program.Unsaved = false;  // nothing is asked about the program of before
    scripted.Open_Answers.push_back(Write_Program(name, text));
    Choose("Menu_File_Open");
  }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
  std::unique_ptr<Main_Frame> Window;
};

}  // namespace norvik
