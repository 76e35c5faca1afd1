// The command `plot`.
#include "cli/adapt_command.h"
#include "cli/companion.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "core/fault.h"
#include "plot/plot_picture.h"
#include "plot/view.h"

#include <memory>
#include <utility>

namespace norvik {

namespace {

struct Plot_Options {
  std::string Program, Picture, View = "isometric-right";
  std::int32_t Size = 900;
  bool Dark = false, Adapt = false;
};

// The executing table of a program or of a motion file.
int Bring_Table(const Companion& companion, const std::string& path, bool adapt) {
  if (!Is_Motion_File(path)) {
    if (!Load_Program(path, adapt, false)) return Failed;
    return Compile_Whole(companion, [] { return CompileProgram(); });
  }
  const std::string why_not = Take_Motion_File(path);
  if (!why_not.empty()) Complain(why_not);
  return why_not.empty() ? Done : Failed;
}

int Plot_Program(const Companion& companion, const Plot_Options& options) {
  const int status = Bring_Table(companion, options.Program, options.Adapt);
  if (status != Done) return status;
  companion.Environment.Start_Fonts();
  Picture_Request request;
  request.View = Find_Preset(options.View).value();
  request.Size = options.Size;
  request.Dark = options.Dark;
  try {
    const Plot_Image picture = Make_Program_Picture(request);
    if (companion.Was_Interrupted()) return Interrupted_By_Operator;
    companion.Environment.Write_Picture(options.Picture, picture);
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
  return Done;
}

std::vector<std::string> View_Names() {
  std::vector<std::string> names;
  names.reserve(Preset_Views.size());
  for (const Preset_View& view : Preset_Views) names.emplace_back(view.Name);
  return names;
}

}  // namespace

void Add_Plot_Command(CLI::App& app, Companion& companion) {
  const auto plot = std::make_shared<Plot_Options>();
  CLI::App* command = app.add_subcommand("plot", "A picture of the program's path");
  command->add_option("program", plot->Program, "G-code or motion file")
      ->required()
      ->type_name("PROGRAM");
  command->add_option("-o,--output", plot->Picture, "Picture file")
      ->required()
      ->type_name("PICTURE");
  command->add_option("--view", plot->View, "Viewpoint")->check(CLI::IsMember(View_Names()));
  command->add_option("--size", plot->Size, "Pixels a side")
      ->check(CLI::Range(Smallest_Picture, Largest_Picture));
  command->add_flag("--dark", plot->Dark, "On a dark ground");
  Add_Adapt_Flag(*command, plot->Adapt);
  command->callback([&companion, plot] {
    companion.Takes_Pictures = true;
    companion.Command = [&companion, plot] { return Plot_Program(companion, *plot); };
  });
}

}  // namespace norvik
