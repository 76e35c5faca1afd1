// The guide in its window, from an empty machine to a first program, by a scripted operator.
#include "app/guide/guide.h"

#include "app/guide/welcome.h"
#include "ui_fixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>

namespace norvik {
namespace {

using testing::HasSubstr;

struct Guide_Window_Test : Ui_Test {
  void Type(const QString& name, const QString& text) {
    auto& field = Find<QLineEdit>(name);
    field.selectAll();
    QTest::keyClicks(&field, text);
  }
  void Pick(const QString& name, int index) {
    auto& box = Find<QComboBox>(name);
    box.setCurrentIndex(index);
    emit box.activated(index);
  }
  std::string Hint() { return Text_Of("Label_Hint").toStdString(); }
  void Go(Guide_Page page) {
    const auto pages = Guide_Pages_Of_Setup();
    for (std::size_t i = 0; i < pages.size(); ++i)
      if (pages[i] == page) Find<QListWidget>("List_Pages").setCurrentRow(static_cast<int>(i));
    ASSERT_EQ(Guide_Form.Page, page);
  }
};

TEST_F(Guide_Window_Test, A_newcomer_comes_from_an_empty_setup_to_a_moving_axis_and_a_program) {
  Choose("Menu_Machine_Guide");
  Click("Command_Next");
  EXPECT_THAT(Hint(), HasSubstr("Type a name"));
  Type("Text_Name", "Bench mill");
  Pick("Combo_Starting_Point", 7);  // nothing yet, inches
  Click("Command_Next");
  ASSERT_EQ(Guide_Form.Page, Guide_Page::Drive) << Hint();
  EXPECT_THAT(Application.MachineFile, HasSubstr("Bench mill.ini"));
  Click("Command_Next");
  Click("Command_Take_Layout");
  Click("Command_Wiggle_1");
  EXPECT_THAT(Hint(), HasSubstr("Off now"));

  Click("Command_Next");
  ASSERT_EQ(Guide_Form.Page, Guide_Page::Motors) << Hint();
  for (int axis = 1; axis <= 3; ++axis) {
    Pick("Combo_Axis", axis - 1);
    Type("Text_Microsteps", "2");
    Type("Text_Turn_Travel", "0.1");
    Click("Command_Take_Steps");
    Type("Text_Travel", axis == 3 ? "4" : "24");
    Click("Command_Take_Travel");
    EXPECT_EQ(Hint(), "") << axis;
  }
  Pick("Combo_Axis", 0);
  const double before = Machine.Position[1];
  Click("Command_Move_Positive");
  EXPECT_NEAR(Machine.Position[1], before + 2, 1e-3) << Hint();
  Click("Command_Move_Negative");

  Go(Guide_Page::Speeds);
  Type("Text_First_Speed", "10");
  Click("Command_Begin_Trial");
  Click("Command_Trial_Good");
  Click("Command_Trial_Bad");
  EXPECT_NEAR(MachineSetup.Axis_Max_Feed_Rate[1], 10.0 * 2 / 3, 1e-3) << Hint();

  Go(Guide_Page::Program);
  scripted.Box_Answers.push_back(Box_Answer::No);
  Click("Command_First_Program");
  EXPECT_THAT(Hint(), HasSubstr("in the editor"));
  Click("Command_Update");
  EXPECT_GT(Program_Wire.Rows().size(), 4U);

  Go(Guide_Page::Finish);
  for (std::size_t i = 0; i < Guide_Form.List_Findings.size(); ++i)
    Find<QCheckBox>("Check_Accept_" + QString::number(i)).click();
  Click("Command_Finish");
  EXPECT_THAT(Hint(), HasSubstr("Saved as"));
}

TEST_F(Guide_Window_Test, A_move_that_is_tried_holds_its_page_and_ends_with_ESC) {
  Choose("Menu_Machine_Guide");
  Open_Guide_At(Guide_Page::Motors);
  Type("Text_Asked", "10");
  In_Yield_When([] { return Machine.Position[1] > 1; },
                [this] {
                  Click("Command_Next");
                  EXPECT_EQ(Guide_Form.Page, Guide_Page::Motors);
                  EXPECT_THAT(Hint(), HasSubstr("ESC stops it"));
                  Application.EscFlag = true;
                });
  Click("Command_Move_Positive");
  EXPECT_LT(Machine.Position[1], 9);
  EXPECT_NE(Hint(), "");
}

TEST_F(Guide_Window_Test, The_welcome_leads_on_and_can_be_switched_off) {
  Set_Shows_Welcome(true);
  Window->Show_Tool_Window("Welcome");
  Find<QCheckBox>("Check_Show_Welcome").click();
  EXPECT_FALSE(Shows_Welcome());
  Click("Command_Set_Up");
  EXPECT_TRUE(Window->Tool_Window_Is_Open("Guide"));
}

}  // namespace
}  // namespace norvik
