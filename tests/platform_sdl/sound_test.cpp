// Wave sound over the library's driver without a device, which plays in real time and to nobody.
#include "platform/platform.h"
#include "platform/sdl/sdl_platform.h"
#include "support/temporary_folder.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::HasSubstr;

std::string Bytes_Of(std::uint32_t value, int count) {
  std::string bytes;
  for (int n = 0; n < count; ++n) bytes += static_cast<char>(value >> (8 * n) & 0xFFU);
  return bytes;
}

// A second of silence, 8 bits, 8000 samples a second.
std::string Wave() {
  const std::string samples(8000, '\x80');
  return "RIFF" + Bytes_Of(36 + 8000, 4) + "WAVEfmt " + Bytes_Of(16, 4) + Bytes_Of(1, 2) +
         Bytes_Of(1, 2) + Bytes_Of(8000, 4) + Bytes_Of(8000, 4) + Bytes_Of(1, 2) + Bytes_Of(8, 2) +
         "data" + Bytes_Of(8000, 4) + samples;
}

struct Sound_Test : testing::Test {
  Sound_Test() { ::setenv("SDL_AUDIODRIVER", "dummy", 1); }
  std::string Write(const std::string& name, const std::string& bytes) {
    std::ofstream(Folder.File(name), std::ios::binary) << bytes;
    return Folder.File(name);
  }
  Temporary_Folder Folder;
};

TEST_F(Sound_Test, A_New_Sound_Ends_The_Last_One_Also_Where_Nothing_Can_Be_Heard_Of_It) {
  const std::string wave = Write("a.wav", Wave());
  const std::string no_wave = Write("b.wav", Wave().substr(0, 20));
  const std::string endless = Write("c.wav", Wave());
  std::filesystem::resize_file(endless, std::uintmax_t{1} << 31);
  struct Row {
    std::string Path, Why;
  };
  for (const Row& row : {Row{Folder.File("gone.wav"), "no such file"}, Row{no_wave, "no wave file"},
                         Row{endless, "longer than 16 MB"}, Row{Folder.Path, "no such file"}}) {
    SCOPED_TRACE(row.Path);
    EXPECT_EQ(Start_Sound(wave), "");
    EXPECT_TRUE(Sound_Plays());
    EXPECT_THAT(Start_Sound(row.Path), HasSubstr(row.Why));
    EXPECT_FALSE(Sound_Plays());
  }
  EXPECT_EQ(Start_Sound(wave), "");
  EXPECT_EQ(Start_Sound(wave), "");
  EXPECT_TRUE(Sound_Plays());
}

}  // namespace
}  // namespace norvik
