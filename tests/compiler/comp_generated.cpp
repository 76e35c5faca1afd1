// The promise of the compensation, held against generated contours: the path keeps the tool's
// radius from the contour wherever the error log is silent, and the log speaks only where it does
// not.
#include "comp_contours.h"
#include "core/setup.h"

#include <gmock/gmock.h>

namespace norvik::comp_test {
namespace {

constexpr double Tolerance = 0.0005;

struct Kind {
  const char* Name;
  int Count;
  Contour (*Make)(Random&);
  double Least_Radius, Largest_Radius;
  bool Complete = true;  // no element may vanish
  double Slack = 0;      // by which the radii at the two ends of an arc may differ
};

class Generated_Contours : public testing::TestWithParam<Kind> {};

TEST_P(Generated_Contours, Keep_The_Radius_Or_Say_So) {
  const Kind& kind = GetParam();
  Random random(20240501);
  int told = 0;
  for (int k = 0; k < kind.Count; ++k) {
    Contour contour = kind.Make(random);
    if (random() % 2) contour = Backwards(contour);
    const int mode = 1 + static_cast<int>(random() % 2);
    const double radius = Between(random, kind.Least_Radius, kind.Largest_Radius);
    MachineSetup.GC_IJ_Incremental = random() % 2 != 0;
    const Outcome outcome = Compensate(Program_Of(contour, mode), radius);
    SCOPED_TRACE(testing::Message()
                 << kind.Name << " " << k << ", mode " << mode << ", radius " << radius << "\n"
                 << Text_Of(contour));
    ASSERT_LT(Largest_Gap(outcome.Moved), 1e-9);
    ASSERT_EQ(Faulty_Record(outcome.Moved, kind.Slack + 2e-5), "");
    const double least = Least_Distance(contour, outcome.Moved, radius);
    if (outcome.Log.empty()) {
      ASSERT_GE(least, radius - Tolerance - kind.Slack);
      if (kind.Complete) {
        ASSERT_EQ(Missing_Element(contour, outcome.Moved, mode, radius), "");
      }
    } else {
      ++told;
      // An arc is told however little it is too tight.
      const bool arc = outcome.Log.front().starts_with("Cutter Compensation Arc radius");
      ASSERT_LT(least, arc || kind.Slack > 0 ? radius : radius - Tolerance / 2)
          << outcome.Log.front();
    }
  }
  RecordProperty("told", told);
  std::cout << kind.Name << ": " << told << " of " << kind.Count << " told\n";
  MachineSetup.GC_IJ_Incremental = false;
}

const Kind Kinds[] = {
    {"polygon", 1500, [](Random& random) { return Random_Polygon(random, false); }, 0.05, 14},
    {"polygon_with_arcs", 1500, [](Random& random) { return Random_Polygon(random, true); }, 0.05,
     14},
    {"walk", 1500, [](Random& random) { return Random_Walk(random, false); }, 0.05, 4},
    {"walk_with_arcs", 1500, [](Random& random) { return Random_Walk(random, true); }, 0.05, 4},
    {"rounded", 500,
     [](Random& random) {
       const double fillet = Between(random, 0.1, 5);
       return Rounded_Rectangle(Between(random, 11, 30), Between(random, 11, 30), fillet);
     },
     0.05, 7},
    {"fine_polyline", 60,
     [](Random& random) { return Fine_Polyline(random, Between(random, 4, 10), 0.2); }, 0.05, 4},
    {"short_moves", 10, [](Random& random) { return Fine_Polyline(random, 1, 0.008); }, 0.02, 0.5,
     false},
    {"short_moves_large_tool", 60, [](Random& random) { return Fine_Bend(random, 0.008); }, 0.5, 4,
     false},
    {"moves_bent_by_decimals", 60,
     [](Random& random) { return With_Decimals(Fine_Bend(random, 0.03), 3); }, 0.5, 4, false},
    {"small", 500, [](Random& random) { return Scaled(Random_Polygon(random, true), 1 / 25.4); },
     0.002, 0.4},
    {"three_decimals", 500,
     [](Random& random) { return With_Decimals(Random_Polygon(random, true), 3); }, 0.05, 10, true,
     0.003},
    {"fillets_with_three_decimals", 500,
     [](Random& random) {
       const double fillet = Between(random, 1, 5);
       return With_Decimals(
           Rounded_Rectangle(Between(random, 11, 30), Between(random, 11, 30), fillet), 3);
     },
     0.05, 5, true, 0.003},
};

// A contour that the tool fits into, entered and left by a line and an arc, twice around: nothing
// is told, though the path crosses the moves towards the contour and away from it.
TEST(Contours_With_Leads, Are_No_Obstacle_For_Themselves) {
  Random random(7);
  for (int k = 0; k < 400; ++k) {
    const double fillet = Between(random, 1.5, 5), radius = Between(random, 0.1, 1.4);
    Contour contour = Rounded_Rectangle(Between(random, 14, 30), Between(random, 14, 30), fillet);
    if (random() % 2) contour = Backwards(contour);
    const int mode = 1 + static_cast<int>(random() % 2);
    Contour whole = With_Leads(contour, mode, Between(random, 1.5, 3));
    if (random() % 2) whole = With_Decimals(whole, 3);
    const Outcome outcome = Compensate(Program_Of(whole, mode), radius);
    SCOPED_TRACE(testing::Message() << "mode " << mode << ", radius " << radius << "\n"
                                    << Text_Of(whole));
    ASSERT_THAT(outcome.Log, testing::IsEmpty());
    ASSERT_LT(Largest_Gap(outcome.Moved), 1e-9);
    ASSERT_GE(Least_Distance(contour, outcome.Moved, radius), radius - Tolerance - 0.003);
  }
}

INSTANTIATE_TEST_SUITE_P(Compensation, Generated_Contours, testing::ValuesIn(Kinds),
                         [](const auto& kind) { return std::string(kind.param.Name); });

}  // namespace
}  // namespace norvik::comp_test
