// adapt_fixture.h: a machine in millimetres, and programs at hand.
#pragma once

#include "adapt/adapt.h"
#include "compiler/check/program_check.h"
#include "compiler/text/program_text.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"

#include <memory>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvik {

struct Adapt_Test : ::testing::Test {
  Adapt_Test() {
    Reset_Compiler();
    MachineSetup.Axis_Format = "0.000";
    MachineSetup.UnitsofMeasurement = 1;
    MachineSetup.GC_IJ_Incremental = true;
    Options = Adapt_Options_Of_Setup();
  }

  Adapted Result(std::string_view text) const {
    return Adapt(GCode_Text(std::string(text)), Options);
  }
  // The new text with plain line ends.
  std::string Text(std::string_view text) const {
    std::string changed = Result(text).Text;
    std::erase(changed, '\r');
    return changed;
  }
  // Findings of one grade, as one text.
  std::string Told(std::string_view text, Adapt_Grade grade) const {
    std::string all;
    for (const Adapt_Finding& finding : Result(text).Findings) {
      if (finding.Grade == grade) all += std::to_string(finding.Line) + ": " + finding.What + "\n";
    }
    return all;
  }
  std::string Refused(std::string_view text) const { return Told(text, Adapt_Grade::Refused); }

  // What the check of the program finds lost or wrong in a text.
  static std::string Lost_Or_Wrong(const std::string& text) {
    std::string all;
    for (const Check_Finding& finding : Check_Program(std::make_shared<const GCode_Text>(text))) {
      const bool of_the_machine = finding.Kind == Check_Kind::Travel_Too_Long;
      if (of_the_machine || Info_Of(finding.Kind).Grade > Check_Grade::Wrong) continue;
      all += std::to_string(finding.Line) + ": " + finding.What + "\n";
    }
    return all;
  }

  Scripted_Platform Scripted;
  Adapt_Options Options;
};

}  // namespace norvik
