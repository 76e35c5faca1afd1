#include "cli/board/frames_command.h"

#include "simulate/board/frame_words.h"

#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace norvik {

namespace {

struct Frames_Options {
  std::string Generation, File;
  std::vector<std::string> Text;
  bool Replies = false;
};

// What a line becomes; its fault is empty when all of it could be read.
using Turn = std::function<Frame_Words(Board_Generation, Frame_Side, const std::string& line)>;

Frame_Words Decode(Board_Generation generation, Frame_Side side, const std::string& line) {
  return Words_Of_Line(generation, side, line);
}

Frame_Words Encode(Board_Generation generation, Frame_Side side, const std::string& line) {
  const Frame_Bytes frame = Frame_Of_Words(generation, side, line);
  return {frame.Fault.empty() ? Hex_Of(frame.Bytes) : "", frame.Fault};
}

// Every line of a stream but empty ones and those that begin with #.
int Turn_Lines(std::istream& lines, const Frames_Options& options, const Turn& turn) {
  const Board_Generation generation = Generation_Named(options.Generation).value();
  const Frame_Side side = options.Replies ? Frame_Side::Reply : Frame_Side::Command;
  constexpr int most_faults = 20;
  int number = 0, faults = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    const auto begin = line.find_first_not_of(" \t\r");
    if (begin == std::string::npos || line[begin] == '#') continue;
    const Frame_Words words = turn(generation, side, line);
    if (!words.Words.empty()) std::cout << words.Words << '\n';
    if (words.Fault.empty() || ++faults > most_faults) continue;
    Complain("line " + std::to_string(number) + ": " + words.Fault);
  }
  if (faults > most_faults) {
    Complain(std::to_string(faults - most_faults) + " more lines could not be read.");
  }
  return faults == 0 ? Done : Failed;
}

int Turn_All(const Frames_Options& options, const Turn& turn) {
  if (options.File.empty() == options.Text.empty()) {
    Complain("Name one frame, - for standard input, or a file by --file.");
    return Wrong_Usage;
  }
  if (!options.File.empty()) {
    std::ifstream file(options.File);
    if (!file) {
      Complain("The file " + options.File + " cannot be read.");
      return Failed;
    }
    return Turn_Lines(file, options, turn);
  }
  if (options.Text.size() == 1 && options.Text.front() == "-") {
    return Turn_Lines(std::cin, options, turn);
  }
  std::string line;
  for (const std::string& word : options.Text) line += (line.empty() ? "" : " ") + word;
  std::istringstream text(line);
  return Turn_Lines(text, options, turn);
}

void Add_Way(CLI::App& frames, Companion& companion, const char* name, const char* help,
             const char* what, const Turn& turn) {
  const auto options = std::make_shared<Frames_Options>();
  CLI::App* command = frames.add_subcommand(name, help);
  command->add_option("generation", options->Generation, "dravon or pelmar")
      ->required()
      ->check(CLI::IsMember({"dravon", "pelmar"}));
  command->add_option("text", options->Text, what);
  command->add_option("--file", options->File, "A file with a frame or an exchange a line")
      ->type_name("FILE");
  command->add_flag("--reply", options->Replies, "They are replies of the board");
  command->callback([&companion, options, turn] {
    companion.Command = [options, turn] { return Turn_All(*options, turn); };
  });
}

}  // namespace

void Add_Frames_Command(CLI::App& app, Companion& companion) {
  CLI::App* frames = app.add_subcommand("frames", "Frames of the controller boards in words");
  frames->require_subcommand(1);
  Add_Way(*frames, companion, "decode", "Hexadecimal digits to words",
          "Hexadecimal digits of a frame, or - for lines of standard input", Decode);
  Add_Way(*frames, companion, "encode", "Words to hexadecimal digits",
          "A command's name and its fields, or - for lines of standard input", Encode);
}

}  // namespace norvik
