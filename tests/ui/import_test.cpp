// Imports as an operator makes them: the menu, the file dialog, the windows of the importers.
#include "app/bitmap_form.h"
#include "app/import_menu.h"
#include "core/operation.h"
#include "core/remembered_files.h"
#include "import/dxf/layers.h"
#include "import/pipeline/report.h"
#include "ui_fixture.h"

#include <filesystem>

#include <QDialog>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>

namespace norvik {
namespace {

const std::string Samples = NORVIK_SAMPLES_FOLDER;

struct Import_Test : Ui_Test {
  // Does `action` in the modal window of this name as soon as it stands open.
  void When_Modal(const QString& name, std::function<void(QDialog&)> action) {
    auto* timer = new QTimer(Window.get());
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr || dialog->objectName() != name) return;
      timer->stop();
      timer->deleteLater();
      action(*dialog);
      if (dialog->isVisible()) {
        ADD_FAILURE() << name.toStdString() << " stays open";
        dialog->reject();
      }
    });
    timer->start(1);
  }
  template <class Kind = QWidget>
  static Kind& In(QDialog& dialog, const char* name) {
    Kind* found = dialog.findChild<Kind*>(name);
    if (found == nullptr) throw std::runtime_error(std::string("No widget ") + name);
    return *found;
  }
  static void Press(QDialog& dialog, const char* name) {
    QTest::mouseClick(&In(dialog, name), Qt::LeftButton);
  }
  static void Click_Row(QListWidget& list, int row, bool twice = false) {
    const QPoint place = list.visualItemRect(list.item(row)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
    if (twice) QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
  }
  void Import(const QString& entry, const std::string& path) {
    GCode_Program.Unsaved = false;  // nothing is asked about the program of before
    scripted.Open_Answers.push_back(path);
    Choose(entry);
  }
  // The program of the window comes from this file, and the panel shows the report.
  void Expect_Imported(const QString& file) {
    EXPECT_TRUE(Text_Of("Text_GCode").contains("[Original File: " + file + "]"));
    EXPECT_TRUE(Window->windowTitle().endsWith(file));
    QTRY_VERIFY(Text_Of("Text_Status").startsWith("Import report: " + file));
    EXPECT_GT(GCodeLineCount(), 5);
  }
  // Folder with the sample picture and a copy that is cut short.
  std::string Pictures() {
    const std::string folder = Folder.File("pictures");
    std::filesystem::create_directories(folder + "/more");
    std::filesystem::copy_file(Samples + "/relief.bmp", folder + "/relief.bmp");
    Replace_File(folder + "/short.bmp", Read_Whole_File(Samples + "/relief.bmp").substr(0, 4000));
    scripted.Pictures[folder + "/relief.bmp"] = {4, 2, std::vector<std::uint8_t>(24, 200)};
    return folder;
  }
  QDialog& Open_Picture_Window(const std::string& folder) {
    Last_File(File_Kind::Bitmap_In).Directory = folder;
    Choose("Menu_Import_Bitmap");
    return Find<QDialog>("Bitmap_Import");
  }
};

TEST_F(Import_Test, The_Menu_Has_One_Entry_For_Each_Kind) {
  QStringList names;
  for (QAction* top : Window->menuBar()->actions()) {
    if (top->text() != "&Import") continue;
    for (QAction* entry : top->menu()->actions()) names << entry->objectName();
  }
  EXPECT_EQ(names.join(' ').toStdString(),
            "Menu_Import_DXF Menu_Import_HPGL Menu_Import_Excellon Menu_Import_Gerber "
            "Menu_Import_Bitmap");
}

TEST_F(Import_Test, Drawings_Become_The_Program_Of_The_Window) {
  struct Row {
    const char *Entry, *File;
  };
  for (const Row& row :
       {Row{"Menu_Import_DXF", "rose.dxf"}, Row{"Menu_Import_HPGL", "rosette.plt"}}) {
    SCOPED_TRACE(row.File);
    Import(row.Entry, Samples + "/" + row.File);
    Expect_Imported(row.File);
  }
  Import("Menu_Import_Excellon", Samples + "/board.nc");
  QTRY_VERIFY(Text_Of("Text_Status").startsWith("Import report: board.nc"));
  EXPECT_EQ(Machine.EndingStep, GCodeLineCount());
  EXPECT_FALSE(Program_Wire.Rows().empty());  // compiled and plotted
}

TEST_F(Import_Test, Nothing_Is_Asked_While_The_Machine_Runs_And_A_Missing_File_Changes_Nothing) {
  Open("first.gc", "G0 X1\nG0 X2\n");
  Machine.CNCMode = CNC_Running;
  for (const char* entry : {"Menu_Import_DXF", "Menu_Import_HPGL", "Menu_Import_Excellon",
                            "Menu_Import_Gerber", "Menu_Import_Bitmap"}) {
    Choose(entry);
  }
  EXPECT_EQ(scripted.Open_Dialogs.size(), 1U);
  EXPECT_FALSE(Find("Bitmap_Import").isVisible());
  EXPECT_EQ(Text_Of("Panel_1"), "Can't open file while CNC running");
  Machine.CNCMode = CNC_Stopped;
  const int beeps = scripted.Beeps;
  Import("Menu_Import_DXF", Folder.File("gone.dxf"));
  EXPECT_EQ(scripted.Beeps, beeps + 1);
  EXPECT_EQ(GCodeLineCount(), 2);
}

TEST_F(Import_Test, The_Layers_Of_A_Drawing_Are_Listed_Without_Waiting) {
  Choose("Menu_Window_DXF_Import_Layers");
  EXPECT_TRUE(Text_Of("Label_Layers").startsWith("No layers yet"));
  MachineSetup.DXF_Sort_Layers = true;
  Import("Menu_Import_DXF", Samples + "/rose.dxf");
  Expect_Imported("rose.dxf");
  EXPECT_TRUE(Window->Tool_Window_Is_Open("DXF_Import_Layers"));
  EXPECT_EQ(Text_Of("Text_Layers"), "LETTERS\nRING\nROSE");
  const QRect place(60, 50, 300, 280);
  Frame_Of("DXF_Import_Layers").setGeometry(place);
  scripted.Answer_Box(Box_Answer::No);  // the imported program is not kept
  Start_Again();
  EXPECT_FALSE(Window->Tool_Window_Is_Open("DXF_Import_Layers"));
  Choose("Menu_Window_DXF_Import_Layers");
  EXPECT_EQ(Frame_Of("DXF_Import_Layers").geometry(), place);
}

TEST_F(Import_Test, Board_Layers_Are_Chosen_By_Rows_Or_All_At_Once) {
  QRect place;
  When_Modal("GerberLayerSelection", [&](QDialog& dialog) {
    EXPECT_EQ(scripted.Pointers.back(), Mouse_Pointer::Normal);
    auto& list = In<QListWidget>(dialog, "List_Layers");
    EXPECT_EQ(list.selectedItems().size(), 2);
    Press(dialog, "Command_None");
    EXPECT_EQ(In<QLabel>(dialog, "Label_Count").text(), "0 of 2 selected");
    Press(dialog, "Command_All");
    EXPECT_EQ(list.selectedItems().size(), 2);
    Click_Row(list, 0);  // a press turns one row over and leaves the others
    EXPECT_FALSE(list.item(0)->isSelected());
    EXPECT_TRUE(list.item(1)->isSelected());
    dialog.setGeometry(70, 80, 500, 520);
    place = dialog.geometry();
    Press(dialog, "Command_OK");
  });
  Import("Menu_Import_Gerber", Samples + "/board.gbr");
  EXPECT_THAT(Import_Report.Layers, testing::ElementsAre("MARKS"));
  EXPECT_EQ(scripted.Pointers.back(), Mouse_Pointer::Normal);
  EXPECT_TRUE(Text_Of("Text_GCode").contains("board.gbr"));
  When_Modal("GerberLayerSelection", [&](QDialog& dialog) {
    EXPECT_EQ(dialog.geometry(), place);
    Press(dialog, "Command_OK");
  });
  Import("Menu_Import_Gerber", Samples + "/board.gbr");
  EXPECT_THAT(Import_Report.Layers, testing::ElementsAre("COPPER", "MARKS"));
}

TEST_F(Import_Test, Called_Off_Layers_Leave_The_Program_Alone) {
  Open("first.gc", "G0 X1\nG0 X2\n");
  const std::function<void(QDialog&)> ways[] = {
      [](QDialog& dialog) { Press(dialog, "Command_Cancel"); },
      [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); },
      [](QDialog& dialog) { dialog.close(); }};
  for (const auto& way : ways) {
    When_Modal("GerberLayerSelection", way);
    Import("Menu_Import_Gerber", Samples + "/board.gbr");
    EXPECT_EQ(Text_Of("Text_GCode"), "G0 X1\nG0 X2\n");
    EXPECT_TRUE(Import_Report.Cancelled);
    EXPECT_EQ(Text_Of("Panel_1"), "Gerber Import Canceled");
    EXPECT_FALSE(Runs(Operation::Import));
  }
}

TEST_F(Import_Test, A_Picture_Is_Chosen_By_Its_Look) {
  QDialog& dialog = Open_Picture_Window(Pictures());
  ASSERT_TRUE(dialog.isVisible());
  auto& pictures = In<QListWidget>(dialog, "File1");
  ASSERT_EQ(pictures.count(), 2);
  EXPECT_EQ(dialog.windowTitle(), "Bitmap Import: ");
  Click_Row(pictures, 1);
  EXPECT_EQ(In<QLineEdit>(dialog, "Text_FileName").text(), "short.bmp");
  EXPECT_TRUE(In<QLabel>(dialog, "Label_Hint").text().contains("cannot be read"));
  Press(dialog, "Command_Open");
  EXPECT_TRUE(dialog.isVisible());

  Click_Row(pictures, 0);
  EXPECT_EQ(dialog.windowTitle(), "Bitmap Import: relief.bmp");
  EXPECT_EQ(In<QLabel>(dialog, "Label_Hint").text(), "4 x 2 pixels");
  // Twice as wide as high, from edge to edge of the frame, whatever the frame's proportions.
  auto& preview = In(dialog, "Picture_Preview");
  const QImage shown = preview.grab().toImage();
  const QRgb level = qRgb(200, 200, 200);
  const QPoint middle = shown.rect().center();
  EXPECT_EQ(shown.pixel(middle), level);
  EXPECT_EQ(shown.pixel(5, middle.y()), level);
  EXPECT_EQ(shown.pixel(middle.x(), middle.y() - shown.width() / 4 + 5), level);
  EXPECT_NE(shown.pixel(middle.x(), middle.y() - shown.width() / 4 - 5), level);

  Press(dialog, "Command_Open");
  EXPECT_FALSE(dialog.isVisible());
  Expect_Imported("relief.bmp");
}

TEST_F(Import_Test, The_Picture_Window_Browses_Opens_By_Double_Click_And_Remembers) {
  const std::string folder = Pictures();
  QDialog& dialog = Open_Picture_Window(folder);
  auto& folders = In<QListWidget>(dialog, "Dir1");
  ASSERT_EQ(folders.item(1)->text(), "more");
  Click_Row(folders, 1, true);
  EXPECT_EQ(In<QListWidget>(dialog, "File1").count(), 0);
  QTest::keyClick(&dialog, Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(GCodeLineCount(), 0);

  Choose("Menu_Import_Bitmap");
  EXPECT_EQ(In<QLabel>(dialog, "Label_Folder").text().toStdString(), folder + "/more");
  Click_Row(folders, 0, true);  // back up
  dialog.setGeometry(40, 50, 900, 600);
  Click_Row(In<QListWidget>(dialog, "File1"), 0, true);
  EXPECT_FALSE(dialog.isVisible());
  Expect_Imported("relief.bmp");

  scripted.Answer_Box(Box_Answer::No);  // the imported program is not kept
  Start_Again();
  Choose("Menu_Import_Bitmap");
  QDialog& again = Find<QDialog>("Bitmap_Import");
  EXPECT_EQ(again.geometry(), QRect(40, 50, 900, 600));
  EXPECT_EQ(In<QLabel>(again, "Label_Folder").text().toStdString(), folder);
  Press(again, "Command_Cancel");
  EXPECT_FALSE(again.isVisible());
}

}  // namespace
}  // namespace norvik
