// simulated_machine.h: a machine behind a space of byte ports.
//
// It stands where the hardware stands: it sees byte accesses only and knows nothing of the step
// engine, so it can judge what really left the computer. It reads the pin map from `MachineSetup`
// by code of its own (a second reader finds what a shared one would hide).
//
//   Port_Write --> pins --> driver --> motor ==> carriage --> switches --> pins --> Port_Read
//                   |       enable     stall     backlash                   ^
//                   |       timing     lost      hard stops                 |
//                   +-----> spindle, coolant          E-stop, auxiliary ----+
//
// Three numbers for each axis: `Commanded` steps as the driver saw them, `Motor` steps without
// those lost, and the carriage behind the backlash, which is the true position. What a real machine
// would punish becomes a finding (findings.h).
//
// Units: positions in units of the setup, machine coordinates that equal the program's at load;
// steps signed, positive away from the negative direction; times in ns of the virtual clock when it
// is installed, of Platform.Monotonic_Clock otherwise. Axes 1..4 are X, Y, Z, A.
//
// What it cannot show: the jitter of a loaded computer, electrical noise beyond its noise pulses,
// torque under load, resonance. A real machine is to be tried first with motor power off, then
// with the tool out.
#pragma once

#include "core/indexed.h"
#include "simulate/findings.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

// --- Axes ----------------------------------------------------------------------------------------

struct Simulated_Axis_Settings {
  // Travel between the end switches, units; the hard stops lie `Overtravel` further out. Without
  // limits the axis turns for ever.
  bool Limited = true;
  double Travel_Low = 0, Travel_High = 10, Overtravel = 0.2;
  double Backlash = 0;  // play of the carriage, units
  // Motor limits; 0: none. Below the pull-in rate it starts and stops at once; above, its speed
  // follows the steps at `Acceleration`, and two steps of lag lose the step.
  double Pull_In_Rate = 0;  // steps/s
  double Top_Rate = 0;      // steps/s
  double Acceleration = 0;  // steps/s^2
  // Driver limits in ns; 0: none. With `Strict` a step that breaks one is lost.
  std::int64_t Shortest_Pulse = 1'000;   // high and low time
  std::int64_t Direction_Setup = 2'000;  // direction to step
  std::int64_t Direction_Hold = 1'000;   // step to direction
  std::int64_t Enable_Time = 0;          // enable to first step
  bool Strict = false;
  // Units per minute towards the negative direction while no motor holds the axis: a heavy Z. A
  // carriage that no motor has held since it was placed rests where it stands. 0: it stays.
  double Sink_Rate = 0;
};

struct Simulated_Axis {
  Simulated_Axis_Settings Settings;

  // --- Steps -----------------------------------------------------------------------------------
  std::int64_t Edges = 0;      // rising edges on the step pin, enabled or not
  std::int64_t Commanded = 0;  // signed, as the driver counts
  std::int64_t Motor = 0;      // signed, without lost steps
  std::int64_t Lost = 0;
  double Carriage = 0;  // steps; behind the motor by the backlash
  double Slack = 0;     // steps back from the flank that bears in the positive direction

  // --- Pins ------------------------------------------------------------------------------------
  bool Step_High = false, Negative = false, Enabled = false;
  std::int64_t Rise_Time = 0, Fall_Time = 0, Direction_Time = 0, Enable_Time = 0;

  // --- Motor -----------------------------------------------------------------------------------
  std::int64_t Interval = 0;  // ns between the last two rising edges; 0: none yet
  double Rotor_Rate = 0;      // steps/s, always positive
  double Lag = 0;             // steps that the rotor is behind
  bool Rotor_Negative = false;
  bool Stalled = false;

  // --- Place -----------------------------------------------------------------------------------
  double Start = 0;  // units at Carriage 0
  double Shift = 0;  // the application's coordinates over the machine's, units
  double Scale = 1;  // steps per unit
  // Carriage steps between which nothing else changes (carriage_watch.h).
  double Border_From = 0, Border_To = 0;
  double Quiet_From = 0, Quiet_To = 0;
  bool Look_Next = false;  // the next step leaves the quiet range wherever it leads

  // --- Weight ----------------------------------------------------------------------------------
  bool Was_Held = false;       // by its motor, since it was placed
  bool Sinking_Told = false;   // since its motor let go
  std::int64_t Sink_Time = 0;  // up to which its sinking is worked out
  double Sunk = 0;             // steps since its motor let go, positive: down
};

// --- Inputs --------------------------------------------------------------------------------------

// How the contact is wired to ground under a pull-up. `Matches_Setup` is what the invert flag of
// the setup expects.
enum class Contact { Matches_Setup, Normally_Open, Normally_Closed };
enum class Input_Fault { None, Stuck_On, Stuck_Off, Wire_Broken };
enum class Input_Force { Automatic, On, Off };

// A range in which a switch is pressed, units; it lets go `Hysteresis` outside.
struct Switch_Zone {
  double From = 0, To = 0;
};

struct Simulated_Input {
  // --- Settings --------------------------------------------------------------------------------
  Contact Wiring = Contact::Matches_Setup;
  Input_Fault Fault = Input_Fault::None;
  Input_Force Force = Input_Force::Automatic;       // the operator's finger
  std::int64_t Bounce = 0;                          // ns of chatter after each change
  std::int64_t Noise_Period = 0, Noise_Width = 0;   // ns; a pulse of the other level in each period
  std::array<std::optional<Switch_Zone>, 2> Zones;  // home and limit switches: low end, high end
  double Hysteresis = 0;                            // units

  // --- State -----------------------------------------------------------------------------------
  bool Pressed = false;     // by the carriage, or the button
  bool Contact_On = false;  // what the wire says, faults and force included, before bounce
  std::int64_t Changed = 0;
};

// --- Outputs -------------------------------------------------------------------------------------

struct Simulated_Output {
  bool On = false;
  std::int64_t Since = 0, On_Time = 0;  // ns; On_Time without the running stretch
  std::int64_t Switchings = 0;
};

struct Simulated_Spindle {
  double Run_Up = 2, Coast = 4;  // seconds between standstill and full speed
  double Speed = 0;              // -1..1 at `Time`; negative: CCW
  std::int64_t Time = 0;
};

// --- The machine ---------------------------------------------------------------------------------

enum class Read_Back { Latch, Zero, Ones };  // what a read of an output register answers

struct Simulated_Machine_State {
  Indexed<Simulated_Axis, 1, 4> Axes;
  Indexed<Simulated_Input, 0, 5> Inputs;  // E-stop, four switches, auxiliary
  Indexed<Simulated_Output, 1, 5> Outputs;
  Simulated_Spindle Spindle;
  Read_Back Output_Read_Back = Read_Back::Latch;
  std::uint8_t Floating_Bus = 255;   // a read of an address where nothing answers
  std::int64_t Access_Time = 1'000;  // ns that a port access takes
  bool EStop_Cuts_Power = false;     // as a safety relay would
  // Top of the material in the application's Z: below it X and Y move with the spindle on only.
  // Absent: not looked at.
  std::optional<double> Material_Top;
  int Skew_Limit = 20;  // steps between a slaved A and its master; 0: not looked at
  std::int64_t Reads = 0, Writes = 0;

  // --- Inner -----------------------------------------------------------------------------------
  bool Loaded = false;     // built from the setup
  int Master = 0;          // axis that A is slaved to; 0: none
  double Skew_Origin = 0;  // A over its master with the gantry straight, units
  bool Askew = false, Cuts_Dry = false;
};
extern Simulated_Machine_State Simulated_Machine;

// Builds the machine from `MachineSetup` and puts its carriages to `Machine.Position`. Travels,
// switches and motor limits take their defaults for that setup, then what section "Simulated
// Machine" of the pointer file says. Findings start anew, with those of the pin map.
void Load_Simulated_Machine();
// The same without a look at the pointer file, all at the defaults.
void Reset_Simulated_Machine();
// Writes the settings that differ from their defaults to section "Simulated Machine" of the pointer
// file; the others follow the setup. False, after a message, when the file cannot be written.
bool Save_Simulation_Settings();
// Fills Port_Read and Port_Write of `Platform`.
void Install_Simulated_Machine();
// Decodes the pin map anew when the setup has changed; called by the machine itself when an
// unknown address is written, and by panels.
void Follow_Setup();
// Neither end stops nor limit switches any more: every program comes to its end, wherever it goes.
void Open_Table_Ends();
// After a change of Settings or Zones in the record.
void Settings_Changed(int axis);
// After a change of wiring, fault, force, bounce or noise of an input 0..5.
void Input_Changed(int input);
// The E-stop is pressed and cuts the power of the motors.
bool Power_Is_Cut();
// Forgets what happened; what is wrong with the pin map stays in the list.
void Clear_Findings();

// --- The operator's hands ------------------------------------------------------------------------

void Press_EStop(bool pressed);
void Press_Auxiliary(bool pressed);
void Force_Input(int input, Input_Force force);
void Set_Input_Fault(int input, Input_Fault fault);
// A worn contact: 5 ms of chatter after each change.
void Set_Input_Bounce(int input, bool on);
// A cable beside a motor's: a pulse of the other level, 0.2 ms long, 20 times a second.
void Set_Input_Noise(int input, bool on);
void Set_EStop_Cuts_Power(bool cuts);
// Moves the carriage by hand, units; not beyond its hard stops. It rests there.
void Place_Carriage(int axis, double position);
// Moves all carriages to where the application believes them to be, and a gantry straight.
void Place_Where_Believed();
// The application's positions are right as they are: after its coordinates were edited or homed,
// later differences count from here. Carriages, travels and switches stay.
void Align_With_Application();

// --- Looking -------------------------------------------------------------------------------------

double True_Position(int axis);       // of the carriage, units
double Commanded_Position(int axis);  // where the steps would have led, units
double Gantry_Skew();                 // A ahead of its master, steps of A; 0 without a master

// Everything that a panel shows, taken at one moment.
struct Simulated_Axis_View {
  double Position = 0, Commanded = 0;  // units
  double Application_Position = 0;     // what the application believes
  std::int64_t Steps_Apart = 0;        // from the application's position; not 0: show it in red
  double Rate = 0;                     // units per minute, 0 at rest
  bool Negative = false, Enabled = false, Stalled = false;
  bool Sinking = false;
  bool Limited = true;
  double Travel_Low = 0, Travel_High = 0, Overtravel = 0;
  std::array<std::optional<Switch_Zone>, 2> Zones;
  std::int64_t Lost = 0;
};
struct Simulated_Input_View {
  bool Used = false;
  bool On = false;    // the meaning after the invert flag
  bool High = false;  // the electrical level
  bool Pressed = false;
  Input_Force Force = Input_Force::Automatic;
  Input_Fault Fault = Input_Fault::None;
  bool Bounces = false, Noisy = false;
};
// What is done to the input, in words: "held on, wire broken, bounces"; empty: nothing.
std::string Words_Of_Faults(const Simulated_Input_View& view);
struct Simulated_Output_View {
  bool Used = false, On = false;
  double On_Seconds = 0;
  std::int64_t Switchings = 0;
};
struct Simulated_Machine_View {
  double Seconds = 0;  // of the machine's clock
  Indexed<Simulated_Axis_View, 1, 4> Axes;
  Indexed<Simulated_Input_View, 0, 5> Inputs;
  Indexed<Simulated_Output_View, 1, 5> Outputs;
  double Spindle_Speed = 0;  // -1..1
  bool EStop_Cuts_Power = false, Power_Cut = false;
  std::int64_t Skew = 0;               // steps of a slaved A ahead of its master
  std::optional<double> Material_Top;  // in the machine's Z
  bool Virtual_Time = false;
  double Speed_Factor = 1;  // virtual seconds in a real second; 0: as fast as it goes
  std::vector<std::string> Findings;
};
Simulated_Machine_View View_Simulated_Machine();

}  // namespace norvik
