// The text of [section] and key=value lines, and its files.
#include "core/profile_file.h"

#include "core/fault.h"
#include "core/paths.h"
#include "support/fault_of.h"
#include "support/full_disk.h"
#include "support/temporary_folder.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

const char* const Sample =
    "; made by hand\r\n"
    "stray=1\r\n"
    "[ Axis ]\r\n"
    "Axis_SPI_1 = 4000 \r\n"
    "axis_spi_1=1\r\n"
    "Quoted=\" a b \"\r\n"
    "Single='x'\r\n"
    "Half=\"x\r\n"
    "Double=\"\"x\"\"\r\n"
    "Equals=a=b\r\n"
    "Empty=\r\n"
    "no key\r\n"
    "\r\n"
    "[Foreign]\r\n"
    "Key=kept ; as it is\r\n"
    "[AXIS]\r\n"
    "Late=2";

TEST(Profile_Text, Reads_By_Section_And_Key) {
  const Profile_Text text{Sample};
  struct Row {
    const char *Section, *Key;
    std::optional<std::string> Value;
  };
  const Row rows[] = {
      {"axis", "AXIS_SPI_1", "4000"},  // in any case; the first of two counts
      {"Axis", "Quoted", " a b "},
      {"Axis", "Single", "x"},
      {"Axis", "Half", "\"x"},
      {"Axis", "Double", "\"x\""},  // one pair only
      {"Axis", "Equals", "a=b"},
      {"Axis", "Empty", ""},
      {"Axis", "no key", {}},
      {"Axis", "Late", {}},  // of two sections the first counts
      {"", "stray", {}},
      {"Foreign", "key", "kept ; as it is"},
      {"Nowhere", "Key", {}},
      {"Axis", "; made by hand", {}},
  };
  for (const Row& row : rows) EXPECT_EQ(text.Find(row.Section, row.Key), row.Value) << row.Key;
}

TEST(Profile_Text, Changes_Only_What_Is_Asked_For) {
  Profile_Text text{Sample};
  EXPECT_EQ(text.Bytes(), Sample);
  text.Set("AXIS", "axis_spi_1", "4000");
  text.Set("Axis", "Quoted", " a b ");
  EXPECT_FALSE(text.Changed());
  text.Set("axis", "AXIS_SPI_1", "2000");
  text.Set("Axis", "New", "1,5");
  text.Set("Foreign", "Other", "2");
  text.Set("Fresh", "First", "1");
  text.Set("Fresh", "Second", "2");
  EXPECT_TRUE(text.Changed());
  std::string expected = Sample;
  const auto change = [&](const std::string& from, const std::string& to) {
    expected.replace(expected.find(from), from.size(), to);
  };
  change("Axis_SPI_1 = 4000 \r\n", "Axis_SPI_1 =2000\r\n");
  change("no key\r\n", "no key\r\nNew=1,5\r\n");  // before the blank line that ends the section
  change("as it is\r\n", "as it is\r\nOther=2\r\n");
  change("Late=2", "Late=2\r\n\r\n[Fresh]\r\nFirst=1\r\nSecond=2\r\n");
  EXPECT_EQ(text.Bytes(), expected);
  EXPECT_EQ(text.Find("axis", "new"), "1,5");
  EXPECT_EQ(text.Find("fresh", "second"), "2");
}

TEST(Profile_Text, Keeps_The_Line_End_Of_The_File) {
  struct Row {
    const char *Before, *After;
  };
  for (const Row& row :
       {Row{"", "[S]\r\nK=1\r\n"}, Row{"[S]\n", "[S]\nK=1\n"}, Row{"[S]", "[S]\r\nK=1\r\n"},
        Row{"[S]\nK=0", "[S]\nK=1"}, Row{"\xEF\xBB\xBF[s]\nk=0\n", "\xEF\xBB\xBF[s]\nk=1\n"},
        Row{"[T]\n\n\n", "[T]\n\n\n\n[S]\nK=1\n"}}) {
    Profile_Text text{row.Before};
    text.Set("S", "K", "1");
    EXPECT_EQ(text.Bytes(), row.After) << row.Before;
  }
}

TEST(Profile_Text, Gives_Back_Every_Value_That_It_Took) {
  for (const std::string value : {"", " ", "  blanks  ", "\"quoted\"", "'", "''", "\"", "a\"b",
                                  "[x]", "; no comment", "=", "umlaut \xC3\xA4", "\"\"\"\""}) {
    Profile_Text text{""};
    text.Set("S", "K", value);
    const Profile_Text again{text.Bytes()};
    EXPECT_EQ(again.Find("S", "K"), value);
    EXPECT_EQ(text.Find("S", "K"), value);
  }
  Profile_Text text{""};
  text.Set("S", "K", std::string("a\r\nb\0c", 6));
  EXPECT_EQ(text.Find("S", "K"), "a  b c");  // a value is one line
}

TEST(Profile_Text, Survives_Garbage) {
  std::string garbage("[\0]=\r\n[]]\n[\n=\n==\n\r\r\n]\n\x80\xFF[S]\n[S\n[S]x\nK=\0hidden\n", 47);
  Profile_Text text{garbage};
  EXPECT_EQ(text.Bytes(), garbage);
  text.Set("S", "K", "v");
  EXPECT_EQ(text.Find("S", "K"), "v");
}

TEST(Profile_File, Cuts_Values_At_255_Characters) {
  const Temporary_Folder folder;
  const std::string path = folder.File("a.ini");
  const std::string letter = "\xC3\xA4";  // two bytes, one character
  std::string longest;
  for (int i = 0; i < 255; ++i) longest += letter;
  Write_Profile(path, "S", "Long", longest + letter + "b");
  Write_Profile(path, "S", "Exact", std::string(255, 'x'));
  EXPECT_EQ(Read_Profile(path, "S", "Long"), longest);
  EXPECT_EQ(Read_Profile(path, "S", "Exact"), std::string(255, 'x'));
  EXPECT_EQ(Read_Profile(path, "S", "None"), "");
  EXPECT_EQ(Read_Profile(folder.File("missing"), "S", "K"), "");
}

TEST(Profile_File, Collects_Writes_And_Drops_Them_Without_Commit) {
  const Temporary_Folder folder;
  const std::string path = folder.File("a.ini");
  Write_Profile(path, "S", "K", "old");
  {
    Profile_Session session(path, Profile_Use::Writing);
    Write_Profile(path, "S", "K", "dropped");
    EXPECT_EQ(Read_Profile(path, "S", "K"), "dropped");
  }
  EXPECT_EQ(Read_Profile(path, "S", "K"), "old");
  {
    const Profile_Session reading(path, Profile_Use::Reading);
    {
      Profile_Session session(path, Profile_Use::Writing);
      Write_Profile(path, "S", "K", "new");
      EXPECT_EQ(Read_Whole_File(path), "[S]\r\nK=old\r\n");
      session.Commit();
      EXPECT_EQ(Read_Whole_File(path), "[S]\r\nK=new\r\n");
    }
    Write_Profile(path, "S", "K", "through");  // reading sessions do not hold writes back
    EXPECT_EQ(Read_Whole_File(path), "[S]\r\nK=through\r\n");
  }
}

// Each writes keys of its own into one file at the same time; none takes back a line of the other.
TEST(Profile_File, Two_Writers_Keep_Each_Others_Keys) {
  constexpr int keys = 60;
  const Temporary_Folder folder;
  const std::string path = folder.File("both.ini");
  std::vector<pid_t> writers;
  for (const std::string& name : {std::string("A"), std::string("B")}) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (int i = 0; i < keys; ++i) Write_Profile(path, "S", name + std::to_string(i), "1");
      std::_Exit(0);
    }
    writers.push_back(child);
  }
  for (const pid_t writer : writers) ::waitpid(writer, nullptr, 0);
  for (int i = 0; i < keys; ++i) {
    EXPECT_EQ(Read_Profile(path, "S", "A" + std::to_string(i)), "1") << i;
    EXPECT_EQ(Read_Profile(path, "S", "B" + std::to_string(i)), "1") << i;
  }
}

// A read session does not hide what another program writes meanwhile from a write within it.
TEST(Profile_File, A_Write_Goes_Into_The_File_As_It_Stands) {
  const Temporary_Folder folder;
  const std::string path = folder.File("a.ini");
  Replace_File(path, "[S]\nA=1\n");
  const Profile_Session reading(path, Profile_Use::Reading);
  Replace_File(path, "[S]\nA=2\n");
  EXPECT_EQ(Read_Profile(path, "S", "A"), "1");
  Write_Profile(path, "S", "B", "3");
  EXPECT_EQ(Read_Whole_File(path), "[S]\nA=2\nB=3\n");
}

TEST(Replace_File, Leaves_The_Old_File_Whole) {
  const Temporary_Folder folder;
  const std::string path = folder.File("a.ini");
  Replace_File(path, "one");
  ::chmod(path.c_str(), 0640);
  const std::string link = folder.File("link.ini");
  std::filesystem::create_symlink("a.ini", link);
  Replace_File(link, "two");  // the file behind the link is replaced, with its rights
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(Read_Whole_File(path), "two");
  struct stat about {};
  ::stat(path.c_str(), &about);
  EXPECT_EQ(about.st_mode & 0777U, 0640U);

  EXPECT_EQ(Fault_Of([&] { Replace_File(folder.Path, "x"); }), Fault_Number::Path_Access);
  EXPECT_EQ(Fault_Of([&] { Replace_File(folder.File("no/such.ini"), "x"); }),
            Fault_Number::File_Not_Found);
  EXPECT_EQ(Fault_Of([&] { Read_Whole_File(folder.Path); }), Fault_Number::Path_Access);
  EXPECT_EQ(Fault_Of([&] { Read_Whole_File(path + "/x"); }), Fault_Number::Path_Access);
  EXPECT_EQ(Fault_Of([&] { Read_Whole_File(folder.File("x")); }), Fault_Number::File_Not_Found);
  if (::geteuid() != 0) {  // nothing is forbidden to root
    ::chmod(path.c_str(), 0440);
    EXPECT_EQ(Fault_Of([&] { Replace_File(path, "x"); }), Fault_Number::Permission_Denied);
  }
  // Nothing is left behind by the failures.
  const auto left = std::distance(std::filesystem::directory_iterator(folder.Path), {});
  EXPECT_EQ(left, 2);
}

TEST(Read_Whole_File, Neither_Hangs_Nor_Takes_All_Memory) {
  const Temporary_Folder folder;
  const std::string pipe = folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(Read_Whole_File(pipe), "");  // nobody writes to it
  const std::string huge = folder.File("huge");
  Replace_File(huge, "");
  ASSERT_EQ(::truncate(huge.c_str(), 5LL << 30), 0);
  EXPECT_EQ(Fault_Of([&] { Read_Whole_File(huge); }), Fault_Number::Out_Of_Memory);
}

// A disk that takes no more in the middle of the write.
TEST(Replace_File, A_Pipe_Without_A_Reader_Is_Refused) {
  const Temporary_Folder folder;
  ASSERT_EQ(::mkfifo(folder.File("pipe").c_str(), 0600), 0);
  EXPECT_THROW(Replace_File(folder.File("pipe"), "x"), Fault);
}

TEST(Replace_File, Full_Disk_Keeps_The_Old_File) {
  const Temporary_Folder folder;
  const std::string path = folder.File("a.ini");
  Replace_File(path, "old");
  {
    const Full_Disk disk;
    EXPECT_EQ(Fault_Of([&] { Replace_File(path, std::string(100'000, 'x')); }),
              Fault_Number::Disk_Full);
  }
  EXPECT_EQ(Read_Whole_File(path), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path), {}), 1);
}

}  // namespace
}  // namespace norvik
