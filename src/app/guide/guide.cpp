#include "app/guide/guide.h"

#include "app/drive_session.h"
#include "app/forms.h"
#include "app/guide/starting_points.h"
#include "app/guide/values.h"
#include "app/machine_menu.h"
#include "app/setup_apply.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/port_setup.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>

namespace norvik {

Guide_Form_State Guide_Form;
Guide_Host_Operations Guide_Host;

namespace {

constexpr std::array<Guide_Page_Row, Guide_Pages> Rows{{
    {"Name and start",
     "The machine gets a name and a file of its own. Begin from a machine like yours; everything "
     "can "
     "be changed on the pages that follow."},
    {"What drives it", "Choose what makes the steps, and see what this computer has for it."},
    {"Pins",
     "Choose how your breakout board uses the connector, or set each pin yourself. Switch each "
     "output on and off, and press each switch: its lamp must light."},
    {"Motors",
     "Steps per unit of each axis, its direction and its length. Keep a hand at the E-stop: the "
     "axis "
     "moves when you press Move."},
    {"Speeds",
     "The axis goes to and fro, a little faster each time. Press \"That was too fast\" when it "
     "stalls, sounds wrong or is fast enough: two thirds of the last good speed are kept."},
    {"Home switches",
     "Say where the home switch of each axis is, then rehearse: Z first, then X, Y, A, slowly."},
    {"E-stop", "Press the machine's E-stop button, then pull it out again."},
    {"Timing",
     "How many microseconds of each half step this computer needs for itself. No axis moves."},
    {"Corrections",
     "Some behaviour stays as the system always had it, though it can hurt. Each correction "
     "changes "
     "one of these; new machines do well with the recommended ones."},
    {"First program",
     "A square in the air, with the spindle off: watch that it turns the right way and ends where "
     "it began."},
    {"Check",
     "What may still surprise you beside the machine. Mend each, or say that it is meant so."},
}};

std::string Machine_Path(const std::string& name) {
  return Join_Path(Application.AppDirectory, name + ".ini");
}

bool Is_File_Name(const std::string& name) {
  return !name.empty() && name.size() <= 60 &&
         name.find_first_of("/\\:*?\"<>|\n\r\t") == name.npos && name.front() != '.' &&
         name.front() != ' ' && name.back() != ' ';
}

// What a page takes when it is left forwards; most take at their buttons.
bool Take_Page(Guide_Page page) {
  switch (page) {
    case Guide_Page::Name:
      return Guide_Form.Has_Machine || Guide_Make_Machine();
    case Guide_Page::Speeds:
      if (Guide_Form.Trial_Runs)
        return Refuse("Say how the last move went first: good, or too fast.");
      return true;
    default:
      return true;
  }
}

void Enter_Page(Guide_Page page) {
  Guide_Form.Page = page;
  Guide_Form.Label_Hint.clear();
  switch (page) {
    case Guide_Page::Wiring:
      Port_Setup_Form_Load();
      break;
    case Guide_Page::Motors:
    case Guide_Page::Switches:
      Show_Guide_Axes();
      break;
    case Guide_Page::Speeds:
      Guide_Form.Trial_Runs = false;
      Show_Guide_Axes();
      break;
    case Guide_Page::EStop:
      Guide_Form.EStop_Seen_On = Guide_Form.EStop_Seen_Off = false;
      break;
    case Guide_Page::Finish:
      Guide_Check();
      break;
    default:
      break;
  }
  Guide_Host.Form_Changed();
}

// A page that moves the machine is not left before it stands.
bool May_Leave() {
  return !Anything_Moves() || Refuse("Not while the machine moves. ESC stops it.");
}

void Go_By(int step) {
  const auto pages = Guide_Pages_Of_Setup();
  const auto here = std::ranges::find(pages, Guide_Form.Page);
  const auto index = here - pages.begin() + step;
  if (here == pages.end() || index < 0 || index >= std::ssize(pages)) return;
  Enter_Page(pages[static_cast<std::size_t>(index)]);
}

}  // namespace

const Guide_Page_Row& Guide_Row(Guide_Page page) {
  return Rows[static_cast<std::size_t>(page)];
}

std::vector<Guide_Page> Guide_Pages_Of_Setup() {
  const bool pins = Drive().Times_Half_Steps;
  std::vector<Guide_Page> pages;
  for (int i = 0; i < Guide_Pages; ++i) {
    const auto page = static_cast<Guide_Page>(i);
    if ((page == Guide_Page::Wiring || page == Guide_Page::Time_Constant) && !pins) continue;
    pages.push_back(page);
  }
  return pages;
}

void Open_Guide() {
  Guide_Form = {};
  Enter_Page(Guide_Page::Name);
}

void Open_Guide_At(Guide_Page page) {
  Guide_Form = {};
  Guide_Form.Has_Machine = true;
  Guide_Form.Text_Name = FileNameStem(PathFileName(Application.MachineFile));
  Enter_Page(page);
}

void Guide_Next() {
  if (May_Leave() && Take_Page(Guide_Form.Page)) Go_By(1);
}

void Guide_Back() {
  if (May_Leave()) Go_By(-1);
}

void Guide_Go(Guide_Page page) {
  if (page == Guide_Form.Page || !May_Leave()) return;
  if (!Guide_Form.Has_Machine) {
    Refuse("Give the machine a name first.");
    return;
  }
  Enter_Page(page);
}

bool Guide_Make_Machine() {
  const std::string& name = Guide_Form.Text_Name;
  if (!Is_File_Name(name))
    return Refuse("Type a name for the machine: letters, digits, blanks, no slash or quotes.");
  const std::string path = Machine_Path(name);
  if (FileExists(path))
    return Refuse(
        "There is a machine of this name. Type another one, or load it by Setup > Load "
        "machine setup and open the guide for one of its pages.");
  if (!May_Change("Can't make a machine")) return false;
  const auto points = Starting_Points();
  const auto chosen = static_cast<std::size_t>(std::max(Guide_Form.Combo_Starting_Point, 0));
  const Starting_Point& point = points[std::min(chosen, points.size() - 1)];
  std::string failed;
  Trap_With([&](const Fault& fault) { failed = fault.Description; },
            [&] { Replace_File(path, std::string(point.Text)); });
  if (!failed.empty()) return Refuse("The machine file can't be made: " + failed);
  Take_Machine_File(path);
  Guide_Form.Has_Machine = true;
  Show_Guide_Axes();
  Guide_Host.Bring_To_Front();
  return true;
}

void Guide_Choose_Drive(int type) {
  if (!May_Change("Can't change the drive")) return;
  Port_Setup_Form_Load();
  Option_Port_Type_Click(static_cast<std::int16_t>(type));
  Port_Setup_Apply_Click();
  Guide_Form.Label_Hint.clear();
  Guide_Host.Form_Changed();
}

}  // namespace norvik
