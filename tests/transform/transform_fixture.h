// transform_fixture.h: a known setup, and transforms of texts at hand.
#pragma once

#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "transform/gcode_process.h"

#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvik {

struct Transform_Test : ::testing::Test {
  Transform_Test() {
    Application = {};
    Messages = {};
    MachineSetup = {};
    MachineSetup.Axis_Format = "000.000";
    MachineSetup.Scale_Cnvrt_Metric_X = MachineSetup.Scale_Cnvrt_Metric_Y =
        MachineSetup.Scale_Cnvrt_Metric_Z = 25.4F;
    MachineSetup.Scale_Cnvrt_Imperial_X = MachineSetup.Scale_Cnvrt_Imperial_Y =
        MachineSetup.Scale_Cnvrt_Imperial_Z = 0.039370078;
  }

  static Transform_Values Axes(float x, float y, float z = 0) {
    Transform_Values values;
    values.Axis[1] = x;
    values.Axis[2] = y;
    values.Axis[3] = z;
    return values;
  }
  static Transformed Result(std::string_view text, Transform transform,
                            const Transform_Values& values = {}) {
    return Transform_Program(GCode_Text(std::string(text)), transform, values);
  }
  // The new text with plain line ends.
  static std::string Text(std::string_view text, Transform transform,
                          const Transform_Values& values = {}) {
    std::string changed = Result(text, transform, values).Text;
    std::erase(changed, '\r');
    return changed;
  }
  static std::vector<std::string> Told(std::string_view text, Transform transform,
                                       const Transform_Values& values = {}) {
    return Texts_Of(Result(text, transform, values).Losses);
  }

  Scripted_Platform Scripted;
};

}  // namespace norvik
