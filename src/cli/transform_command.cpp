// The command `transform`.
#include "cli/companion.h"
#include "compiler/text/program_text.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "transform/gcode_process.h"

#include <cmath>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>

namespace norvik {

namespace {

struct Transform_Options {
  std::vector<std::string> Arguments;  // values, then the program
  std::string Output;
  bool Duplicate = false;
};

// The values of the call over those of the setup. Absent, with the reason printed, when one is no
// number.
std::optional<Transform_Values> Values_Of_Call(Transform transform,
                                               const std::vector<std::string>& texts) {
  Transform_Values values = Values_Of_Setup(transform);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const auto number = Try_Number(texts[i]);
    if (!number || std::abs(*number) > std::numeric_limits<float>::max()) {
      Complain("\"" + texts[i] + "\" is no number that " + std::string(Row_Of(transform).Name) +
               " can take.");
      return std::nullopt;
    }
    values.Axis[static_cast<int>(i) + 1] = To_Single(*number);
  }
  return values;
}

void Write_Program(const std::string& path, const std::string& text) {
  if (path == "-") {
    std::cout << text;
  } else {
    Replace_File(path, text);
  }
}

int Run_Transform(const Companion& companion, Transform transform,
                  const Transform_Options& options) {
  std::vector<std::string> texts = options.Arguments;
  const std::string program = texts.back();
  texts.pop_back();
  auto values = Values_Of_Call(transform, texts);
  if (!values) return Wrong_Usage;
  if (transform == Transform::Offset) values->Duplicate |= options.Duplicate;
  if (!Load_Program(program)) return Failed;
  try {
    const Transformed result = Transform_Program(*GCode_Program.Text, transform, *values);
    if (companion.Was_Interrupted()) return Interrupted_By_Operator;
    if (result.State == Transform_State::Refused) {
      Complain(result.Refusal + "; nothing was written.");
      return Failed;
    }
    for (const std::string& text : Texts_Of(result.Losses)) Complain(text);
    if (transform == Transform::Sort) Complain("sort orders nothing: the program is unchanged.");
    Write_Program(options.Output, result.Text);
    return Done;
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
}

constexpr const char* Values_Help[] = {"", "", "[X Y] PROGRAM", "[X Y Z] PROGRAM"};
constexpr const char* Descriptions[] = {
    "Multiply X, R and I by X, Y and J by Y; without values by those of the machine file",
    "Move the program; without values by the offsets of the machine file",
    "Absolute positions from incremental moves",
    "Incremental moves from absolute positions",
    "Number the lines from N001 on; numbers that stand are replaced",
    "Take the numbers in front of the lines away",
    "Print X, Y, Z, I, J, R, A, B, C by the numeral format",
    "Inches to millimetres, by the factors of the machine file",
    "Millimetres to inches, by the factors of the machine file",
    "Read the program; orders nothing and changes nothing",
};

}  // namespace

void Add_Transform_Command(CLI::App& app, Companion& companion) {
  CLI::App* all = app.add_subcommand("transform", "Rewrite the text of a program");
  all->require_subcommand(1);
  for (const Transform transform : All_Transforms) {
    const Transform_Row& row = Row_Of(transform);
    const auto options = std::make_shared<Transform_Options>();
    CLI::App* command = all->add_subcommand(std::string(row.Name),
                                            Descriptions[static_cast<std::size_t>(transform)]);
    command
        ->add_option("arguments", options->Arguments,
                     row.Values == 0 ? "G-code file; - is standard input"
                                     : "Values, then the G-code file; - is standard input")
        ->required()
        ->expected(1, 1 + row.Values)
        ->type_name(row.Values == 0 ? "PROGRAM" : Values_Help[row.Values]);
    command->add_option("-o,--output", options->Output, "Program to write; - is standard output")
        ->required()
        ->type_name("PROGRAM");
    if (transform == Transform::Offset) {
      command->add_flag("--duplicate", options->Duplicate,
                        "Append the moved lines to the program instead of replacing it");
    }
    command->callback([&companion, transform, options] {
      companion.Command = [&companion, transform, options] {
        return Run_Transform(companion, transform, *options);
      };
    });
  }
}

}  // namespace norvik
