// Wave sound over the library's driver without a device, which plays in real time into a file.
#include "platform/platform.h"
#include "platform/sdl/sdl_platform.h"
#include "support/temporary_folder.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::HasSubstr;

std::string Bytes_Of(std::uint32_t value, int count) {
  std::string bytes;
  for (int n = 0; n < count; ++n) bytes += static_cast<char>(value >> (8 * n) & 0xFFU);
  return bytes;
}

// 8 bits, 8000 samples a second.
std::string Wave(const std::string& samples = std::string(8000, '\x80')) {
  const auto count = static_cast<std::uint32_t>(samples.size());
  return "RIFF" + Bytes_Of(36 + count, 4) + "WAVEfmt " + Bytes_Of(16, 4) + Bytes_Of(1, 2) +
         Bytes_Of(1, 2) + Bytes_Of(8000, 4) + Bytes_Of(8000, 4) + Bytes_Of(1, 2) + Bytes_Of(8, 2) +
         "data" + Bytes_Of(count, 4) + samples;
}

// A tone without two equal neighbours, so that a lost or doubled sample shows.
std::string Tone(int count, int step) {
  std::string samples;
  for (int n = 0; n < count; ++n) samples += static_cast<char>((n * step) & 0xFF);
  return samples;
}

struct Sound_Test : testing::Test {
  Sound_Test() {
    ::setenv("SDL_AUDIODRIVER", "disk", 1);
    ::setenv("SDL_DISKAUDIOFILE", Device.c_str(), 1);
  }
  // Closes the device and gives what it was sent.
  std::string Heard() {
    Start_Sound(Folder.File("gone.wav"));
    std::ifstream file(Device, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::string Write(const std::string& name, const std::string& bytes) {
    std::ofstream(Folder.File(name), std::ios::binary) << bytes;
    return Folder.File(name);
  }
  Temporary_Folder Folder;
  const std::string Device = Folder.File("device");
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

TEST_F(Sound_Test, The_Device_Gets_The_Samples_Of_The_Last_Sound_And_Nothing_Of_The_One_Before) {
  const std::string long_tone = Tone(80'000, 3), short_tone = Tone(3'000, 7);
  ASSERT_EQ(Start_Sound(Write("long.wav", Wave(long_tone))), "");
  std::this_thread::sleep_for(std::chrono::milliseconds(700));
  const std::string begun = Heard();
  ASSERT_GT(begun.size(), 1'000U);
  EXPECT_LT(begun.size(), long_tone.size()) << "ended before its time";
  EXPECT_TRUE(long_tone.starts_with(begun));

  ASSERT_EQ(Start_Sound(Folder.File("long.wav")), "");
  ASSERT_EQ(Start_Sound(Write("short.wav", Wave(short_tone))), "");
  for (int n = 0; n < 200 && Sound_Plays(); ++n) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(700));
  const std::string heard = Heard();
  ASSERT_TRUE(heard.starts_with(short_tone)) << heard.size();
  EXPECT_EQ(heard.find_first_not_of('\x80', short_tone.size()), std::string::npos)
      << "silence behind its end";
}

}  // namespace
}  // namespace norvik
