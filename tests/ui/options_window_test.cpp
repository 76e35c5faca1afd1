// The window Options with its hands and eyes: every setting found, changed, stored and put back.
#include "app/options/option_pages.h"
#include "app/options/options_form.h"
#include "core/computer_settings.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/setup_keys.h"
#include "ui_fixture.h"

#include <algorithm>
#include <cmath>
#include <map>

#include <QAbstractSlider>
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QScrollBar>
#include <QSpinBox>
#include <QTableWidget>
#include <QToolButton>

namespace norvik {
namespace {

using testing::HasSubstr;

// What the window does not change, and why.
const std::map<std::string, const char*> Not_To_Be_Changed = {
    {"Tool_Directory", "each start takes the folder Tools of the working folder"},
    {"Recent_Folder", "kept for other programs and never written"},
};

struct Options_Window_Test : Ui_Test {
  QWidget& Opened() {
    Choose("Menu_Machine_Options");
    QCoreApplication::processEvents();
    return Find("Options");
  }
  template <class Kind = QWidget>
  static Kind& In(QWidget& window, const QString& name) {
    Kind* found = window.findChild<Kind*>(name);
    if (found == nullptr) throw std::runtime_error("No widget " + name.toStdString());
    return *found;
  }
  static void Press(QWidget& window, const QString& name) {
    In<QAbstractButton>(window, name).click();
  }

  // Finds a setting as an operator would: its key into the search, the first hit.
  static QWidget& Looked_Up(QWidget& window, const Option_Field& field) {
    auto& search = In<QLineEdit>(window, "Text_Search");
    search.setText(QString::fromStdString(Option_Key(field)));
    QTest::keyClick(&search, Qt::Key_Return);
    return In(window, QString::fromStdString(Option_Control_Name(field)));
  }
  static void Type_Into(QLineEdit& line, const QString& text) {
    line.setFocus();
    line.selectAll();
    line.insert({});
    QTest::keyClicks(&line, text);
  }
  // Another value that the setting takes.
  static std::string Other_Value(const Option_Field& field) {
    const Setting_Row& row = *field.Row;
    if (row.Kind == Setting_Kind::Numeral_Format) return "0.00000";
    if (Is_Color(row)) return "#123456";
    if (row.Key == "JoyJog_KeyValue_<n>") return "7";
    const bool number = row.Kind == Setting_Kind::Number || row.Kind == Setting_Kind::Whole_Number;
    if (!number && !Takes_Number_Or_Nothing(row)) return "C:\\other " + std::to_string(field.Index);
    const double low = std::max(row.Bounds.Low, 1.0), high = std::min(row.Bounds.High, 900.0);
    double value = std::floor((low + high) / 3) + 1;
    if (row.Kind == Setting_Kind::Number) value = std::min(value + 0.5, row.Bounds.High);
    value = std::max(value, row.Bounds.Low);
    const auto now = Try_Number(field.Text);
    if (now && *now == value) value += value < high ? 1 : -1;
    return RegionalFix(Shortest_Text(value));
  }
  static void Change(QWidget& control, const Option_Field& field) {
    if (auto* check = qobject_cast<QCheckBox*>(&control)) return check->click();
    if (auto* combo = qobject_cast<QComboBox*>(&control)) {
      const int index = combo->currentIndex() == 0 ? 1 : 0;
      combo->setCurrentIndex(index);
      emit combo->activated(index);
      return;
    }
    Type_Into(dynamic_cast<QLineEdit&>(control), QString::fromStdString(Other_Value(field)));
  }
  static std::string In_File(const Option_Field& field) {
    const std::string key = Option_Key(field);
    return field.Machine != nullptr ? ReadSetup(field.Row->Section, key)
                                    : ReadPointer(field.Row->Section, key);
  }
  static void Expect_Taken(QWidget& window) {
    EXPECT_EQ(In<QLabel>(window, "Label_Result").text().left(8), "Applied ")
        << In<QLabel>(window, "Label_Result").text().toStdString();
    for (const Option_Field& field : Options_Form.Fields)
      EXPECT_EQ(field.Error, "") << Option_Key(field) << "=" << field.Text;
  }
  void Walk(char decimal_sign);
};

void Options_Window_Test::Walk(char decimal_sign) {
  Application.DecimalSeparator = decimal_sign;
  QWidget& window = Opened();
  std::vector<std::string> before, typed;
  // The drive is left alone: another one would take the simulated machine's place.
  const auto left_out = [](const Option_Field& field) {
    return Not_To_Be_Changed.contains(Option_Key(field)) ||
           Option_Key(field) == "Parallel_Port_Type";
  };
  for (std::size_t i = 0; i < Options_Form.Fields.size(); ++i) {
    const Option_Field& field = Options_Form.Fields[i];
    SCOPED_TRACE(Option_Key(field));
    before.push_back(field.Stored);
    QWidget& control = Looked_Up(window, field);
    if (!left_out(field)) Change(control, field);
    typed.push_back(field.Text);
    EXPECT_EQ(field.Error, "");
    EXPECT_TRUE(left_out(field) || Is_Edited(field));
  }
  Press(window, "Command_Apply");
  Expect_Taken(window);
  for (std::size_t i = 0; i < Options_Form.Fields.size(); ++i) {
    const Option_Field& field = Options_Form.Fields[i];
    SCOPED_TRACE(Option_Key(field));
    if (left_out(field)) continue;
    EXPECT_NE(field.Stored, before[i]);
    EXPECT_TRUE(Same_Value(*field.Row, In_File(field), field.Stored)) << In_File(field);
    EXPECT_TRUE(Same_Value(*field.Row, typed[i], field.Stored) || !field.Note.empty()) << typed[i];
    QWidget& control = Looked_Up(window, field);
    auto& reset = In<QToolButton>(window, "Reset_" + control.objectName());
    if (Is_Not_Default(field)) {
      EXPECT_TRUE(reset.isVisibleTo(&window));
      reset.click();
    }
    EXPECT_FALSE(Is_Not_Default(field)) << field.Text << " for " << field.Default;
  }
  Press(window, "Command_Apply");
  Expect_Taken(window);
  for (const Option_Field& field : Options_Form.Fields) {
    SCOPED_TRACE(Option_Key(field));
    if (left_out(field)) continue;
    // The factory depths of layers follow the levels, which came back in the same stroke.
    const bool follows = field.Row->Key.find("ingDepth_") != std::string_view::npos;
    if (follows) continue;
    EXPECT_TRUE(Same_Value(*field.Row, field.Stored, field.Default)) << field.Stored;
    EXPECT_TRUE(Same_Value(*field.Row, In_File(field), field.Default)) << In_File(field);
  }
}

TEST_F(Options_Window_Test, Every_Setting_Is_Found_Changed_Stored_And_Put_Back) {
  Walk('.');
}

TEST_F(Options_Window_Test, The_Same_In_A_Region_With_A_Decimal_Comma) {
  Walk(',');
}

TEST_F(Options_Window_Test, Another_Drive_Is_Taken_And_Given_Back) {
  QWidget& window = Opened();
  const Option_Field& field = *Find_Option("Parallel_Port_Type");
  Change(Looked_Up(window, field), field);
  EXPECT_THAT(In<QLabel>(window, "Label_Consequences").text().toStdString(),
              HasSubstr("opens the drive again"));
  Press(window, "Command_Apply");
  EXPECT_EQ(MachineSetup.Parallel_Port_Type, 2);
  Press(window, "Reset_Parallel_Port_Type");
  Press(window, "Command_OK");
  EXPECT_EQ(MachineSetup.Parallel_Port_Type, 1);
  EXPECT_FALSE(Window->Tool_Window_Is_Open("Options"));
}

// --- Single things -----------------------------------------------------------------------------

TEST_F(Options_Window_Test, A_Wrong_Text_Has_Its_Error_Beside_It_And_Nothing_Is_Stored) {
  QWidget& window = Opened();
  auto& line = dynamic_cast<QLineEdit&>(Looked_Up(window, *Find_Option("Axis_SPI_2")));
  EXPECT_TRUE(line.hasFocus() || QApplication::focusWidget() == nullptr);
  const std::string before = Read_Whole_File(Application.MachineFile);
  for (const char* text : {"abc", "NaN", "1e999", "-0", ",", "-5", "99999999999", "4000\n4000"}) {
    line.setText({});
    line.insert(text);
    Option_Change(*Find_Option("Axis_SPI_2"), text);
    auto& error = In<QLabel>(window, "Error_Axis_SPI_2");
    EXPECT_TRUE(error.isVisibleTo(&window) && !error.text().isEmpty()) << text;
    Press(window, "Command_Apply");
    EXPECT_THAT(In<QLabel>(window, "Label_Result").text().toStdString(),
                HasSubstr("nothing is applied"));
  }
  EXPECT_EQ(Read_Whole_File(Application.MachineFile), before);
  Press(window, "Command_Cancel");
  EXPECT_NE(MachineSetup.Axis_SPI[2], 0);
}

TEST_F(Options_Window_Test, Cancel_And_Escape_Forget_What_Was_Typed) {
  for (const bool by_key : {false, true}) {
    QWidget& window = Opened();
    auto& line = dynamic_cast<QLineEdit&>(Looked_Up(window, *Find_Option("Arc_Max_Segments")));
    const QString before = line.text();
    Type_Into(line, "77");
    In<QLineEdit>(window, "Text_Search").clear();
    if (by_key)
      QTest::keyClick(&line, Qt::Key_Escape);
    else
      Press(window, "Command_Cancel");
    EXPECT_FALSE(Window->Tool_Window_Is_Open("Options"));
    EXPECT_NE(MachineSetup.Arc_Max_Segments, 77);
    QWidget& again = Opened();
    auto& shown = dynamic_cast<QLineEdit&>(Looked_Up(again, *Find_Option("Arc_Max_Segments")));
    EXPECT_EQ(shown.text(), before);
    Press(again, "Command_Cancel");
  }
}

TEST_F(Options_Window_Test, The_Other_Windows_Lead_To_Their_Settings) {
  const auto shown = [] { return Options_Form.Page + ": " + Options_Form.Shown_Key; };
  Click("Command_Axis_Setup_Y");
  EXPECT_EQ(shown(), "Axes: Axis_SPI_2");
  Choose("Menu_Machine_Axes");
  EXPECT_EQ(shown(), "Axes: ");
  auto& picture = Find("Picture1");
  QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5),
                          picture.mapToGlobal(QPoint(5, 5)));
  QApplication::sendEvent(&picture, &event);
  Find<QAction>("Menu_Plot_Options").trigger();
  EXPECT_EQ(shown(), "Plot: ");
  if (QWidget* popup = QApplication::activePopupWidget()) popup->close();

  Choose("Menu_Machine_Machine_Check");
  auto& findings = In<QTableWidget>(Find("Machine_Check"), "List_Findings");
  ASSERT_GT(findings.rowCount(), 0);
  int row = 0;
  while (row < findings.rowCount() - 1 && findings.item(row, 1)->text().isEmpty()) ++row;
  findings.selectRow(row);
  Press(Find("Machine_Check"), "Command_Change_Setting");
  EXPECT_NE(Options_Form.Shown_Key, "");
  EXPECT_THAT(findings.item(row, 1)->text().toStdString(), HasSubstr(Options_Form.Shown_Key));

  scripted.Open_Answers.emplace_back(std::nullopt);
  Choose("Menu_Import_HPGL");
  ASSERT_TRUE(scripted.Open_Dialogs.back().On_Options);
  scripted.Open_Dialogs.back().On_Options();
  EXPECT_EQ(shown(), "Import: HPGL: ");
}

// The keys of a list's page lead to the list.
TEST_F(Options_Window_Test, Lists_Are_Reached_From_Their_Pages) {
  for (const Option_Page& page : Option_Pages()) {
    if (page.List_Window.empty()) continue;
    QWidget& window = Opened();
    ASSERT_TRUE(Show_Option(page.Name));
    for (QPushButton* button : window.findChildren<QPushButton*>("Command_List_Window")) {
      if (button->isVisibleTo(&window)) button->click();
    }
    EXPECT_TRUE(Window->Tool_Window_Is_Open(QString::fromUtf8(
        page.List_Window.data(), static_cast<qsizetype>(page.List_Window.size()))))
        << page.List_Window;
  }
}

TEST_F(Options_Window_Test, Two_Setups_Are_Compared_Key_By_Key) {
  Write_Machine("work/other.ini");
  WriteSetup("Axis", "Axis_SPI_1", "1234");
  LoadMachineSetup();
  scripted.Open_Answers.push_back(Folder.File("work/other.ini"));
  Press(Opened(), "Command_Compare");
  auto& table = Find<QTableWidget>("Table_Compared");
  ASSERT_EQ(table.rowCount(), 1);
  EXPECT_EQ(table.item(0, 0)->text(), "Steps per unit, X");
  EXPECT_EQ(table.item(0, 1)->text(), "1234");
  EXPECT_EQ(table.item(0, 3)->text(), "Axis.Axis_SPI_1");
  EXPECT_EQ(MachineSetup.Axis_SPI[1], 1234);
  Find("Compare").close();
}

TEST_F(Options_Window_Test, The_Legend_Names_The_Colours_In_Use) {
  const QString legend = Text_Of("Label_Legend");
  for (const char* words : {"travel", "cut", "deep cut"}) EXPECT_TRUE(legend.contains(words));
}

// --- Screen readers ----------------------------------------------------------------------------

bool Needs_A_Name(const QWidget& widget) {
  if (!widget.isVisible() || widget.objectName().startsWith("qt_")) return false;
  if (qobject_cast<const QScrollBar*>(&widget) != nullptr) return false;
  // Parts of the toolkit's own: a table's corner, a frame's buttons.
  const QString kind = widget.metaObject()->className();
  if (kind.startsWith("QTableCorner") || kind.startsWith("QMdi")) return false;
  return qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
         qobject_cast<const QLineEdit*>(&widget) != nullptr ||
         qobject_cast<const QComboBox*>(&widget) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(&widget) != nullptr ||
         qobject_cast<const QAbstractSlider*>(&widget) != nullptr ||
         qobject_cast<const QAbstractItemView*>(&widget) != nullptr ||
         qobject_cast<const QPlainTextEdit*>(&widget) != nullptr;
}

TEST_F(Options_Window_Test, No_Control_Of_Any_Window_Is_Without_A_Name_For_Screen_Readers) {
  int walked = 0;
  const auto walk = [&] {
    QCoreApplication::processEvents();
    for (QWidget* window : QApplication::topLevelWidgets()) {
      for (QWidget* widget : window->findChildren<QWidget*>()) {
        if (!Needs_A_Name(*widget)) continue;
        ++walked;
        const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(face, nullptr);
        EXPECT_FALSE(face->text(QAccessible::Name).isEmpty())
            << widget->metaObject()->className() << " " << widget->objectName().toStdString()
            << " in " << widget->window()->objectName().toStdString();
      }
    }
  };
  for (QAction* entry : Window->findChildren<QAction*>()) {
    const QString name = entry->objectName();
    const bool opens = name.startsWith("Menu_Window_") || name == "Menu_Machine_Options" ||
                       name == "Menu_Machine_Machine_Check" || name == "Menu_Machine_Port_Setup" ||
                       name == "Menu_Machine_System_Timing" || name == "Menu_Machine_Table_Setup" ||
                       name == "Menu_Help_About" || name == "Menu_Help_Error_Log";
    if (opens) entry->trigger();
  }
  walk();
  for (const Option_Page& page : Option_Pages()) {
    Show_Option(page.Name);
    walk();
  }
  EXPECT_GT(walked, 1000);
}

}  // namespace
}  // namespace norvik
