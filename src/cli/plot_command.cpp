// The command `plot`.
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
  bool Dark = false;
};

int Plot_Program(const Companion& companion, const Plot_Options& options) {
  if (!Load_Program(options.Program)) return Failed;
  const int status = Compile_Whole(companion, [] { return CompileProgram(); });
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
  for (const Preset_View& view : Preset_Views) names.emplace_back(view.Name);
  return names;
}

}  // namespace

void Add_Plot_Command(CLI::App& app, Companion& companion) {
  const auto plot = std::make_shared<Plot_Options>();
  CLI::App* command = app.add_subcommand("plot", "A picture of the program's path");
  command->add_option("program", plot->Program, "G-code file")->required()->type_name("PROGRAM");
  command->add_option("-o,--output", plot->Picture, "Picture file")
      ->required()
      ->type_name("PICTURE");
  command->add_option("--view", plot->View, "Viewpoint")->check(CLI::IsMember(View_Names()));
  command->add_option("--size", plot->Size, "Pixels a side")
      ->check(CLI::Range(Smallest_Picture, Largest_Picture));
  command->add_flag("--dark", plot->Dark, "On a dark ground");
  command->callback([&companion, plot] {
    companion.Takes_Pictures = true;
    companion.Command = [&companion, plot] { return Plot_Program(companion, *plot); };
  });
}

}  // namespace norvik
