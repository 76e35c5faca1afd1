// The window `Bitmap_Import` as a record: browsing, preview, what opens and what does not.
#include "app/bitmap_form.h"

#include "app/app_fixture.h"
#include "app/import_menu.h"
#include "core/operation.h"

#include <filesystem>

namespace norvik {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

struct Bitmap_Form_Test : App_Test {
  Bitmap_Form_Test() {
    Restore_Factory_Setup();
    MachineSetup.BMAP_Material_Size_X = MachineSetup.BMAP_Material_Size_Y = 1;
    for (const char* name : {"b.BMP", "a.jpg", "c.gif", "notes.txt", ".hidden.bmp"}) {
      Write_File("pictures/" + std::string(name), "x");
      scripted.Pictures[In(name)] = {2, 1, {0, 0, 0, 255, 255, 255}};
    }
    std::filesystem::create_directory(In("inner"));
    Bitmap_Host.Close = [this] {
      ++Closed;
      Bitmap_Import_Form_Unload();
    };
    Bitmap_Import_Form_Load(In(""));
  }
  std::string Write_File(const std::string& name, const std::string& text) {
    std::filesystem::create_directories(Folder.File("pictures"));
    return App_Test::Write_File(name, text);
  }
  std::string In(const std::string& name) { return Folder.File("pictures/" + name); }

  int Closed = 0;
};

TEST_F(Bitmap_Form_Test, Lists_Folders_And_Pictures_And_Goes_Up_And_Down) {
  EXPECT_EQ(Bitmap_Import.Folder, Folder.File("pictures"));
  EXPECT_THAT(Bitmap_Import.Dir1, ElementsAre("..", "inner"));
  EXPECT_THAT(Bitmap_Import.File1, ElementsAre("a.jpg", "b.BMP", "c.gif"));
  Bitmap_Import_Dir1_Change(1);
  EXPECT_EQ(Bitmap_Import.Folder, In("inner"));
  EXPECT_TRUE(Bitmap_Import.File1.empty());
  EXPECT_THAT(Bitmap_Import.Label_Hint, HasSubstr("No .jpg, .bmp or .gif pictures"));
  Bitmap_Import_Dir1_Change(0);
  EXPECT_EQ(Bitmap_Import.Folder, Folder.File("pictures"));
  Bitmap_Import_Form_Load("/");
  EXPECT_EQ(Bitmap_Import.Folder, "/");
  EXPECT_THAT(Bitmap_Import.Dir1, Not(Contains("..")));
}

TEST_F(Bitmap_Form_Test, A_Name_Is_Shown_Whether_Chosen_Or_Typed) {
  Bitmap_Import_File1_Click(0);
  EXPECT_EQ(Bitmap_Import.Text_FileName, "a.jpg");
  EXPECT_EQ(Bitmap_Import.Caption, "Bitmap Import: a.jpg");
  ASSERT_TRUE(Bitmap_Import.Picture_Preview);
  EXPECT_EQ(Bitmap_Import.Label_Hint, "");
  Bitmap_Import_Text_FileName_Change("notes.txt");
  EXPECT_FALSE(Bitmap_Import.Picture_Preview);
  EXPECT_THAT(Bitmap_Import.Label_Hint, HasSubstr("Only .jpg, .bmp and .gif"));
  Bitmap_Import_Text_FileName_Change(In("c.gif"));  // a full path
  EXPECT_TRUE(Bitmap_Import.Picture_Preview);
  EXPECT_EQ(Bitmap_Import.Caption, "Bitmap Import: c.gif");
}

TEST_F(Bitmap_Form_Test, What_Cannot_Be_Imported_Keeps_The_Window_And_Says_Why) {
  scripted.Pictures.erase(In("b.BMP"));  // damaged
  struct Row {
    const char *Name, *Hint;
  };
  for (const Row& row : {Row{"", "Choose a picture"}, Row{"gone.bmp", "File not found : gone.bmp"},
                         Row{"notes.txt", "Only .jpg"}, Row{"b.BMP", "cannot be read"},
                         Row{"../pictures", "Only .jpg"}}) {
    SCOPED_TRACE(row.Name);
    const int beeps = scripted.Beeps;
    Bitmap_Import_Text_FileName_Change(row.Name);
    Bitmap_Import_Command_Open_Click();
    EXPECT_EQ(scripted.Beeps, beeps + 1);
    EXPECT_THAT(Bitmap_Import.Label_Hint, HasSubstr(row.Hint));
  }
  EXPECT_EQ(Closed, 0);
  EXPECT_EQ(Recent.RecentFiles[1], "");
}

TEST_F(Bitmap_Form_Test, Open_And_Double_Click_Close_First_And_Import) {
  std::string order;
  Bitmap_Host.Close = [&] {
    order += "close ";
    EXPECT_FALSE(Runs(Operation::Import));
    Bitmap_Import_Form_Unload();
  };
  Import_Host.Open_GCode = [&](const std::string&) { order += "program "; };
  Bitmap_Import_File1_DblClick(2);
  EXPECT_EQ(order, "close program ");
  EXPECT_EQ(Main_Form.Caption, "NORVIK 4  c.gif");
  EXPECT_EQ(Recent.RecentFiles[1], In("c.gif"));
  EXPECT_EQ(ReadPointer("General", "BMap_Source_File_Name"), "c.gif");
  Bitmap_Import_File1_Click(0);
  Bitmap_Import_Command_Open_Click();
  EXPECT_EQ(Recent.RecentFiles[1], In("a.jpg"));
}

TEST_F(Bitmap_Form_Test, Cancel_Imports_Nothing_And_The_Folder_Is_Remembered) {
  Bitmap_Import_Dir1_Change(1);
  Bitmap_Import_Command_Cancel_Click();
  EXPECT_EQ(Closed, 1);
  EXPECT_EQ(GCodeLineCount(), 0);
  Bitmap_Import_Form_Load("/");
  EXPECT_EQ(Bitmap_Import.Folder, In("inner"));
  std::filesystem::remove(In("inner"));  // gone before the next time
  Bitmap_Import_Form_Load(In(""));
  EXPECT_EQ(Bitmap_Import.Folder, Folder.File("pictures"));
}

}  // namespace
}  // namespace norvik
