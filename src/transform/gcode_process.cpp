#include "transform/gcode_process.h"

#include "core/application.h"
#include "core/general_text.h"
#include "core/setup.h"
#include "transform/line_text.h"
#include "transform/progress.h"
#include "transform/word_rebuild.h"

#include <algorithm>
#include <charconv>

namespace norvik {

namespace {

constexpr std::array<Transform_Row, All_Transforms.size()> Rows{{
    {"scale", "Scale", "GCode Process: Modiying Scale...", 2},
    {"offset", "Offset", "GCode Process: Adding offsets...", 3},
    {"absolute", "Convert to absolute", "GCode Process: Converting to Absolute...", 0},
    {"incremental", "Convert to incremental", "GCode Process: Converting to Incremental...", 0},
    {"add-sequence", "Add sequence numbers", "GCode Step Display: Adding Sequence Numbers...", 0},
    {"remove-sequence", "Remove sequence numbers",
     "GCode Step Display: Removing Sequence Numbers...", 0},
    {"decimal-format", "Decimal format", "GCode Step Display: Numeral Conversion...", 0},
    {"metric", "Convert to metric", "GCode Process: Converting to Metric...", 0},
    {"imperial", "Convert to imperial", "GCode Process: Converting to Imperial...", 0},
    {"sort", "File sort", "Open GCode: Sorting File...", 0},
}};

// --- What happens to each word -------------------------------------------------------------------

// R has one factor for two directions: that of X.
struct Scaling {
  static constexpr std::string_view Order = "NTPFMGXYZRIJK";
  double X, Y;

  static bool Begin_Line(const GCode_Words&) { return true; }
  double Value(char letter, double value) const {
    switch (letter) {
      case 'X':
      case 'R':
      case 'I':
        return value * X;
      case 'Y':
      case 'J':
        return value * Y;
      default:
        return value;
    }
  }
};

// Feeds and dwells keep their text.
struct Unit_Conversion {
  static constexpr std::string_view Order = "NTPFMGXYZIJKR";
  double X, Y, Z;

  static bool Begin_Line(const GCode_Words&) { return true; }
  double Value(char letter, double value) const {
    switch (letter) {
      case 'Y':
      case 'J':
        return value * Y;
      case 'Z':
      case 'K':
        return value * Z;
      default:
        return value * X;
    }
  }
};

bool Is_Code(const GCode_Words& words, double code) {
  bool is_number = true;
  return words.Has('G') && Clean_Number(words.Text('G'), is_number) == code && is_number;
}

// Centres that count from the start of their arc move with it by themselves.
struct Moving {
  static constexpr std::string_view Order = "NPFMGXYZIJK";
  double X, Y, Z;
  bool Centres_From_Start;

  static bool Begin_Line(const GCode_Words& words) { return !Is_Code(words, 91); }
  double Value(char letter, double value) const {
    switch (letter) {
      case 'X':
        return value + X;
      case 'Y':
        return value + Y;
      case 'I':
        return Centres_From_Start ? value : value + X;
      case 'J':
        return Centres_From_Start ? value : value + Y;
      default:  // Z and K
        return value + Z;
    }
  }
};

double Six_Decimals(double value) {
  static const Decimal_Rounding six_decimals("0000.000000");
  return six_decimals(value);
}

struct Place {
  double X = 0, Y = 0, Z = 0;
};

// Absolute positions are the sums of the moves; a centre counts from the start of its line.
struct Summing {
  static constexpr std::string_view Order = "NPFMGXYZIJ";
  Place Sum, Before;

  bool Begin_Line(GCode_Words& words) {
    Before = Sum;
    if (Is_Code(words, 91)) words.Set_Text('G', "90");
    return true;
  }
  double Value(char letter, double value) {
    switch (letter) {
      case 'X':
        return Sum.X = Six_Decimals(Sum.X + value);
      case 'Y':
        return Sum.Y = Six_Decimals(Sum.Y + value);
      case 'Z':
        return Sum.Z = Six_Decimals(Sum.Z + value);
      case 'I':
        return Six_Decimals(Before.X + value);
      default:  // J
        return Six_Decimals(Before.Y + value);
    }
  }
};

// Moves are the differences of the positions as read.
struct Differences {
  static constexpr std::string_view Order = "NPFMGXYZIJ";
  Place Last, Before;

  bool Begin_Line(GCode_Words& words) {
    Before = Last;
    if (Is_Code(words, 90)) words.Set_Text('G', "91");
    return true;
  }
  double Value(char letter, double value) {
    switch (letter) {
      case 'X':
        Last.X = value;
        return Six_Decimals(value - Before.X);
      case 'Y':
        Last.Y = value;
        return Six_Decimals(value - Before.Y);
      case 'Z':
        Last.Z = value;
        return Six_Decimals(value - Before.Z);
      case 'I':
        return Six_Decimals(value - Before.X);
      default:  // J
        return Six_Decimals(value - Before.Y);
    }
  }
};

// --- Transforms that keep the words --------------------------------------------------------------

// "001 ", as the importers number their lines.
char* Write_Sequence(char* out, std::int32_t n) {
  for (const std::int32_t least : {100, 10}) {
    if (n < least) *out++ = '0';
  }
  out = std::to_chars(out, out + 12, n).ptr;
  *out++ = ' ';
  return out;
}

template <class Append_Line>
void For_Each_Line(const GCode_Text& program, Line_Progress& progress, Transformed& result,
                   Append_Line&& append_line) {
  for (std::int32_t number = 1; number <= program.Line_Count(); ++number) {
    append_line(number, program.Line(number));
    if (!progress.Goes_On(number)) {
      result.State = Transform_State::Escaped;
      return;
    }
  }
}

void Add_Numbers(const GCode_Text& program, Line_Progress& progress, Transformed& result) {
  For_Each_Line(program, progress, result, [&](std::int32_t number, std::string_view line) {
    char text[16] = {'N'};
    result.Text.append(text, Write_Sequence(text + 1, number));
    result.Text.append(Strip_Number(line)).append("\r\n");
  });
}

void Remove_Numbers(const GCode_Text& program, Line_Progress& progress, Transformed& result) {
  For_Each_Line(program, progress, result, [&](std::int32_t, std::string_view line) {
    result.Text.append(Strip_Number(line)).append("\r\n");
  });
}

void Format_Words(const GCode_Text& program, Line_Progress& progress, Transformed& result) {
  Word_Format format("############" + MachineSetup.Axis_Format, Application.DecimalSeparator);
  For_Each_Line(program, progress, result, [&](std::int32_t, std::string_view line) {
    format.Append_Line(result.Text, line);
    result.Text.append("\r\n");
  });
}

// --- The whole -----------------------------------------------------------------------------------

Unit_Conversion To_Metric() {
  return {MachineSetup.Scale_Cnvrt_Metric_X, MachineSetup.Scale_Cnvrt_Metric_Y,
          MachineSetup.Scale_Cnvrt_Metric_Z};
}

Unit_Conversion To_Imperial() {
  return {MachineSetup.Scale_Cnvrt_Imperial_X, MachineSetup.Scale_Cnvrt_Imperial_Y,
          MachineSetup.Scale_Cnvrt_Imperial_Z};
}

// Whether the G words say that the program is already what the transform is to make of it.
void Judge_Modes(Transform transform, const Word_Rebuild::Modes& modes, Transform_Losses& losses) {
  const auto already = [&](bool is_so, std::string_view why) {
    losses.Already_There = is_so;
    if (is_so) losses.Why_Already = why;
  };
  const bool units = transform == Transform::Metric || transform == Transform::Imperial,
             moves = transform == Transform::Absolute || transform == Transform::Incremental;
  losses.Both_Units = units && modes.Inch && modes.Millimetre;
  losses.Both_Modes = moves && modes.Absolute && modes.Incremental;
  if (transform == Transform::Metric) already(modes.Millimetre && !modes.Inch, "it holds G21");
  if (transform == Transform::Imperial) already(modes.Inch && !modes.Millimetre, "it holds G20");
  if (transform == Transform::Absolute) already(!modes.Incremental, "it holds no G91");
  if (transform == Transform::Incremental) {
    already(modes.Incremental && !modes.Absolute, "it holds G91 and no G90");
    losses.No_Mode = !modes.Kept;
  }
}

// The tallies count steps; the operator sees the lines of a text with its empty ones.
void Name_Text_Lines(const GCode_Text& program, Transform_Losses& losses) {
  for (Line_Tally* tally :
       {&losses.Dropped_Lines, &losses.Taken_Over, &losses.Lost_Digits, &losses.Passed_Over,
        &losses.Behind_Comment, &losses.No_Number, &losses.Repeats}) {
    if (tally->Count == 0) continue;
    const char* const whole = program.Whole().data();
    const char* const place = program.Line(tally->First_Line).data();
    std::int32_t line = 1;
    for (const char* at = whole; at < place; ++at) {
      if (*at == '\n' || (*at == '\r' && at[1] != '\n')) ++line;
    }
    tally->First_Line = line;
  }
}

void Read_Lines(const GCode_Text& program, Line_Progress& progress, Transformed& result) {
  GCode_Scanner scanner;
  For_Each_Line(program, progress, result,
                [&](std::int32_t, std::string_view line) { scanner.Parse_GCode_Line(line); });
  result.Text = program.Whole();
}

double Factor(float value) {
  return value == 0 ? 1 : value;
}

void Rebuild(const GCode_Text& program, Transform transform, const Transform_Values& values,
             Line_Progress& progress, Transformed& result) {
  Word_Rebuild rebuild(result.Text, result.Losses);
  const auto run = [&](const auto& rules, Emptied_Lines emptied) {
    const Word_Rebuild::End end = rebuild.Run(program, rules, emptied, progress);
    if (end == Word_Rebuild::End::Escaped) result.State = Transform_State::Escaped;
    if (end == Word_Rebuild::End::Refused) result.State = Transform_State::Refused;
  };
  const Indexed<float, 1, 3>& axis = values.Axis;
  switch (transform) {
    case Transform::Scale:
      run(Scaling{Factor(axis[1]), Factor(axis[2])}, Emptied_Lines::Stay);
      break;
    case Transform::Offset:
      if (values.Duplicate) {
        for (std::int32_t line = 1; line <= program.Line_Count(); ++line) {
          result.Text.append(program.Line(line)).append("\r\n");
        }
      }
      run(Moving{axis[1], axis[2], axis[3], MachineSetup.GC_IJ_Incremental}, Emptied_Lines::Stay);
      if (result.State == Transform_State::Refused) result.Refusal = Incremental_Refusal;
      break;
    case Transform::Absolute:
      run(Summing{}, Emptied_Lines::Vanish);
      break;
    case Transform::Incremental:
      run(Differences{}, Emptied_Lines::Vanish);
      break;
    case Transform::Metric:
      run(To_Metric(), Emptied_Lines::Stay);
      break;
    default:
      run(To_Imperial(), Emptied_Lines::Stay);
      break;
  }
  Judge_Modes(transform, rebuild.Seen_Modes(), result.Losses);
  Name_Text_Lines(program, result.Losses);
}

}  // namespace

const Transform_Row& Row_Of(Transform transform) {
  return Rows[static_cast<std::size_t>(transform)];
}

Transform_Values Values_Of_Setup(Transform transform) {
  Transform_Values values;
  if (transform == Transform::Scale) {
    values.Axis[1] = MachineSetup.GC_ScaleX;
    values.Axis[2] = MachineSetup.GC_ScaleY;
  } else if (transform == Transform::Offset) {
    values.Axis = MachineSetup.Default_Offset;
    values.Duplicate = MachineSetup.Offset_Duplicate;
  }
  return values;
}

Transformed Transform_Program(const GCode_Text& program, Transform transform,
                              const Transform_Values& values) {
  Transformed result;
  if (program.Line_Count() == 0) return result;
  result.Text.reserve(program.Whole().size() + program.Whole().size() / 4);
  const std::string_view status = Row_Of(transform).Status;
  const bool sorts = transform == Transform::Sort;
  Line_Progress progress(status,
                         sorts ? "Sorting GCode: Loading File  "
                               : std::string(status.substr(0, status.find("..."))) + " ",
                         sorts ? " %Completed" : "% completed", program.Line_Count());
  switch (transform) {
    case Transform::Add_Sequence:
      Add_Numbers(program, progress, result);
      break;
    case Transform::Remove_Sequence:
      Remove_Numbers(program, progress, result);
      break;
    case Transform::Decimal_Format:
      Format_Words(program, progress, result);
      break;
    case Transform::Sort:
      Read_Lines(program, progress, result);
      break;
    default:
      Rebuild(program, transform, values, progress, result);
      break;
  }
  return result;
}

}  // namespace norvik
