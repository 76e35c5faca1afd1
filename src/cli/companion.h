// companion.h: what the commands of norvik-cli share.
//
// The companion is for scripts, tests and machines without a display. It owns no logic: a command
// reads its options, calls the rooms and prints. Results go to standard output, progress and
// messages to standard error. Exit status: 0 done, 1 the work failed, 2 wrong usage, 130 ended by
// Ctrl-C or a request to terminate; the result of an earlier call then stands as it was.
//
// Machine file and pointer file are only read, unless the command is one that changes them.
#pragma once

#include "core/working_name.h"
#include "plot/plot_image.h"

#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace norvik {

struct Setup_Row;

enum Exit_Status { Done = 0, Failed = 1, Wrong_Usage = 2, Interrupted_By_Operator = 130 };

// Options in front of the command.
struct Companion_Options {
  std::string Home;                   // folder of everything; empty: the folders of the desktop
  std::string Machine;                // machine file instead of the one in use
  std::vector<std::string> Settings;  // SECTION.KEY=VALUE for this call only
  bool Decimal_Comma = false;
};

// From one end of an axis to the other.
struct Axis_Travel {
  double Low = 0, High = 0;
};

struct Companion;

// What main wires in: back ends that the commands may not see.
struct Companion_Environment {
  // The operator asked to stop, by Ctrl-C, a request to terminate or a terminal that hung up.
  std::function<bool()> Asked_To_Stop = [] { return false; };
  // Finds the add-on cards of this computer, once the folders are known.
  std::function<void()> Find_Cards = [] {};
  // The simulated machine takes the place of the port.
  std::function<void()> Use_Simulated_Machine = [] {};
  // Direct access where the process may use it and the setup asks for it, the simulated machine
  // otherwise. Answers in words which one it is. Raises a fault with words for the operator when
  // another program drives the machine. From here on no signal ends the process by itself.
  std::function<std::string()> Use_Port = [] { return std::string(); };
  // Why that port cannot be used, with what to do; empty when it can.
  std::function<std::string()> Port_Refusal = [] { return std::string(); };
  std::function<void()> Use_Virtual_Clock = [] {};
  // Steps move a real machine, as the port was chosen.
  std::function<bool()> Machine_Is_Real = [] { return false; };
  // The travel of an axis of the simulated machine, units, and a table without ends.
  std::function<Axis_Travel(int axis)> Travel_Of = [](int) { return Axis_Travel(); };
  std::function<void()> Open_Table_Ends = [] {};
  // What the simulated machine noticed; empty on real ports.
  std::function<std::vector<std::string>()> Findings = [] { return std::vector<std::string>(); };
  // Adds the commands of rooms that this one may not see; none by default.
  std::function<void(CLI::App& app, Companion& companion)> Add_Commands = [](CLI::App&,
                                                                             Companion&) {};
  // A command that reads or writes pictures was chosen. Does not come back where another program
  // takes the call over; otherwise the reason why pictures are not possible, empty: they are.
  std::function<std::string()> Take_Pictures = [] { return std::string(); };
  // Plays a sound file to its end, or until the operator asks to stop. Answers why nothing can be
  // heard; empty: it was played.
  std::function<std::string(const std::string& path)> Play_Sound = [](const std::string&) {
    return std::string("this build of norvik-cli plays no sounds");
  };
  // Texts in pictures need the toolkit's application object; no display.
  std::function<void()> Start_Fonts = [] {};
  // Raises a file fault that says what to do.
  std::function<void(const std::string& path, const Plot_Image& picture)> Write_Picture =
      [](const std::string&, const Plot_Image&) {};
};

struct Companion {
  Companion_Options Options;
  Companion_Environment Environment;
  std::function<int()> Command;  // set by the chosen command
  bool Takes_Pictures = false;   // the same

  // Folders, region, setup and settings of this call. `Done`, or the exit status; the reason is
  // printed.
  int Start() const;
  // Ends a command of which the operator wanted the end: says so and answers true.
  bool Was_Interrupted() const;
};

// Reads a program into the line table; "-" is standard input. False, with the reason printed, when
// it cannot be read.
bool Load_Program(const std::string& path);

// The tables of a compile in a folder of their own beside the earlier ones, until they are whole.
// Without `Put_In_Place` the earlier tables stand as they were.
class Staged_Tables {
 public:
  // Raises a file fault when the folder of the tables cannot be written.
  Staged_Tables();
  ~Staged_Tables();
  Staged_Tables(const Staged_Tables&) = delete;
  Staged_Tables& operator=(const Staged_Tables&) = delete;

  // The tables take their place. Raises a file fault.
  void Put_In_Place();

 private:
  std::string Folder;
  Working_Folder Staging;
};

// A motion file by its name.
bool Is_Motion_File(const std::string& path);
// Makes the wires of a motion file the executing table; touches no file. Answers what stands
// against it, in words.
std::string Take_Motion_File(const std::string& path);

// The bytes of a file; "-" is standard input. Raises a file fault.
std::string Read_Input(const std::string& path);
// Writes a result whole or not at all; "-" is standard output. Raises a file fault.
void Write_Output(const std::string& path, std::string_view bytes);

// What the compile left out, by line, on standard output; nothing when it left out nothing.
void Print_Losses();

// Runs `compile` with staged tables and puts them in place when it is true and nobody asked to
// stop. `Done`, or the exit status; the reason is printed.
int Compile_Whole(const Companion& companion, const std::function<bool()>& compile);

// Prints "norvik-cli: text" on standard error.
void Complain(const std::string& text);
// Prints what the logic reported: message boxes and the error log of this call, on standard error.
void Print_Status_Line(const std::string& text);

// Runs `store` on the machine file as it stands, without the settings of this call. A file that is
// missing is made whole first. The exit status; the reason is printed.
int Store_Setup(const std::function<void()>& store);
// One key of the machine file, for `store`. Raises a file fault.
void Write_Setup_Key(const Setup_Row& row, int index, const std::string& text);

// What a finding says about the correction that answers it: " {corrections set KEY}"; nothing where
// there is none.
std::string Correction_Word(std::string_view key);

// Each adds its commands to the application.
void Add_Compile_Commands(CLI::App& app, Companion& companion);
void Add_Setup_Command(CLI::App& app, Companion& companion);
void Add_Corrections_Command(CLI::App& app, Companion& companion);
void Add_Run_Commands(CLI::App& app, Companion& companion);
void Add_Plot_Command(CLI::App& app, Companion& companion);
void Add_Import_Command(CLI::App& app, Companion& companion);
void Add_Transform_Command(CLI::App& app, Companion& companion);
void Add_Adapt_Commands(CLI::App& app, Companion& companion);
void Add_Export_Command(CLI::App& app, Companion& companion);
void Add_Motion_Command(CLI::App& app, Companion& companion);
void Add_List_Commands(CLI::App& app, Companion& companion);
void Add_Support_Command(CLI::App& app, Companion& companion);

// Parses and runs; the exit status of the process.
int Run_Companion(int argument_count, char** arguments, Companion_Environment environment);

}  // namespace norvik
