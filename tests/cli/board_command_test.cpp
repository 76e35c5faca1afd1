// The commands `board` and `frames` as their user starts them: real bytes cross a real terminal.
#include "support/temporary_folder.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

// Output of a command line of norvik-cli, and its status.
struct Told {
  std::string Output;
  int Status = -1;
};
Told Companion_Says(const std::string& words, const std::string& input = "") {
  Told told;
  const std::string line = "printf '" + input + "' | " + NORVIK_CLI + " " + words + " 2>&1";
  FILE* pipe = ::popen(line.c_str(), "r");
  char buffer[512];
  while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) told.Output += buffer;
  told.Status = WEXITSTATUS(::pclose(pipe));
  return told;
}

class Board_Command_Test : public testing::Test {
 protected:
  void Start(const std::vector<std::string>& options) {
    std::vector<std::string> words{NORVIK_CLI, "--home", Folder.Path, "board", "pelmar",
                                   "--link",   Link,     "--control", Socket};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    Id = ::fork();
    if (Id == 0) {
      const int out = ::open((Folder.Path + "/out").c_str(), O_WRONLY | O_CREAT, 0600);
      ::dup2(out, STDOUT_FILENO);
      ::execv(arguments[0], arguments.data());
      std::_Exit(127);
    }
    for (int i = 0; i < 400 && ::access(Socket.c_str(), F_OK) != 0; ++i) Nap();
    Control = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    Socket.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::connect(Control, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  ~Board_Command_Test() override {
    if (Port >= 0) ::close(Port);
    if (Control >= 0) ::close(Control);
    if (Id > 0) ::kill(Id, SIGKILL), ::waitpid(Id, nullptr, 0);
  }
  static void Nap() { std::this_thread::sleep_for(std::chrono::milliseconds(25)); }

  std::string Command(const std::string& line) const {
    const std::string whole = line + "\n";
    EXPECT_EQ(::write(Control, whole.data(), whole.size()), static_cast<ssize_t>(whole.size()));
    std::string answer;
    for (char letter = 0; ::read(Control, &letter, 1) == 1 && letter != '\n';) answer += letter;
    return answer;
  }
  // What comes within the time, `length` bytes at most.
  Bytes Exchange(const Bytes& frame, std::size_t length, int milliseconds = 2000) const {
    EXPECT_EQ(::write(Port, frame.data(), frame.size()), static_cast<ssize_t>(frame.size()));
    Bytes answer;
    pollfd file{Port, POLLIN, 0};
    while (answer.size() < length && ::poll(&file, 1, milliseconds) > 0) {
      std::uint8_t byte = 0;
      if (::read(Port, &byte, 1) != 1) break;
      answer.push_back(byte);
    }
    return answer;
  }
  bool Open() {
    for (int i = 0; i < 80 && Port < 0; ++i) {
      Port = ::open(Link.c_str(), O_RDWR | O_NOCTTY);
      if (Port < 0) Nap();
    }
    return Port >= 0;
  }

  std::string Text_Of(const std::string& name) const {
    std::ifstream file(Folder.File(name));
    return {std::istreambuf_iterator<char>(file), {}};
  }

  Temporary_Folder Folder;
  std::string Link = Folder.Path + "/port", Socket = Folder.Path + "/control";
  pid_t Id = -1;
  int Control = -1, Port = -1;
};

const Bytes Presence{27, 9, 36, 0}, Is_Here{27, 9, 42, 219, 5, 46, 1};

TEST_F(Board_Command_Test, A_Board_Answers_Over_A_Terminal_Loses_Its_Cable_And_Comes_Back) {
  Start({"--frame-log", Folder.Path + "/frames"});
  ASSERT_TRUE(Open());
  EXPECT_EQ(Exchange(Presence, 7), Is_Here);
  // Every value of a byte passes: 0 to 255 in the counters of four axes.
  for (int value = 0; value < 256; value += 5) {
    Bytes frame{27, 18};
    for (int i = 0; i < 12; ++i) frame.push_back(static_cast<std::uint8_t>(value + i));
    frame.push_back(0);
    unsigned sum = 0;
    for (const std::uint8_t byte : frame) sum += byte;
    frame.push_back(static_cast<std::uint8_t>(sum % 256));
    frame.push_back(static_cast<std::uint8_t>(sum / 256));
    EXPECT_EQ(Exchange(frame, 4), Bytes({27, 18, 45, 0}));
    const Bytes status = Exchange({27, 11, 38, 0}, 38);
    ASSERT_EQ(status.size(), 38U);
    EXPECT_EQ(Bytes(status.begin() + 2, status.begin() + 14),
              Bytes(frame.begin() + 2, frame.begin() + 14));
  }
  EXPECT_THAT(Command("state"), HasSubstr("\"checksum_errors\":0"));
  EXPECT_EQ(Command("unplug 300"), "{\"ok\":true}");
  Nap();
  ::close(std::exchange(Port, -1));
  EXPECT_NE(::access(Link.c_str(), F_OK), 0);
  ASSERT_TRUE(Open());  // the link is back
  EXPECT_EQ(Exchange(Presence, 7), Is_Here);
  EXPECT_EQ(Command("fault add frame=1 no-reply"), "{\"ok\":true}");
  EXPECT_TRUE(Exchange(Presence, 7, 100).empty());
  EXPECT_EQ(Command("expect-idle 1"), "{\"ok\":true}");
  EXPECT_THAT(Command("fly"), HasSubstr("\"ok\":false"));
  EXPECT_EQ(Command("quit"), "{\"ok\":true}");
  int status = -1;
  ::waitpid(Id, &status, 0);
  Id = -1;
  EXPECT_EQ(status, 0);
  EXPECT_NE(::access(Link.c_str(), F_OK), 0);
  EXPECT_THAT(Text_Of("frames"), HasSubstr("\"words\":\"ReadPresence\",\"verdict\":\"done\""));
  EXPECT_THAT(Text_Of("out"), HasSubstr("SIMULATED BOARD Pelmar at "));
}

TEST_F(Board_Command_Test, Stepped_Time_Passes_By_Command_Only) {
  Start({"--time", "stepped", "--option", "pace=off"});
  ASSERT_TRUE(Open());
  // A dwell of a second.
  Bytes dwell{27, 10, 0, 3, 232};
  dwell.insert(dwell.end(), 16, 255);
  for (const int byte : {3, 232, 0, 3, 232, 0, 0, 0, 0, 0, 0, 255, 255, 0, 0, 1}) {
    dwell.push_back(static_cast<std::uint8_t>(byte));
  }
  unsigned sum = 0;
  for (const std::uint8_t byte : dwell) sum += byte;
  dwell.push_back(static_cast<std::uint8_t>(sum % 256));
  dwell.push_back(static_cast<std::uint8_t>(sum / 256));
  EXPECT_EQ(Exchange(dwell, 6).size(), 6U);
  EXPECT_EQ(Command("advance 999999"), "{\"ok\":true}");
  EXPECT_THAT(Command("state"), HasSubstr("\"moving\":true"));
  EXPECT_EQ(Command("advance 1"), "{\"ok\":true}");
  EXPECT_THAT(Command("state"), HasSubstr("\"moving\":false"));
  EXPECT_THAT(Command("scale 2"), HasSubstr("\"ok\":false"));
}

TEST(Frames_Command_Test, Decodes_And_Encodes) {
  EXPECT_EQ(Companion_Says("frames decode dravon 1b 0c 27 00").Output, "StopMotion\n");
  EXPECT_EQ(Companion_Says("frames encode dravon OutputOn output=3").Output, "1b0d032b00\n");
  const Told lines = Companion_Says("frames decode pelmar -",
                                    "# a log\\n1 1B 0F 2A 00 / 1B 0F B2 0C E8 00\\nxx\\n");
  EXPECT_THAT(lines.Output, HasSubstr("1  > ReadBuffer  < ReadBuffer free=3250\n"));
  EXPECT_THAT(lines.Output, HasSubstr("line 3"));
  EXPECT_EQ(lines.Status, 1);
  EXPECT_EQ(Companion_Says("frames encode dravon Fly").Status, 1);
  EXPECT_EQ(Companion_Says("frames decode dravon").Status, 2);
  EXPECT_EQ(Companion_Says("board dravon --option fly=1").Status, 2);
}

}  // namespace
}  // namespace norvik
