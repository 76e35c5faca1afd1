// ESC as the X server knows it, while no window of this program exists.
#include "platform/x11/escape_key.h"

#include "support/x11_server.h"

#include <chrono>
#include <optional>
#include <thread>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using Clock = std::chrono::steady_clock;

struct Escape_Key_Test : testing::Test {
  static void SetUpTestSuite() { Server.emplace(); }
  static void TearDownTestSuite() { Server.reset(); }
  void SetUp() override {
    if (Server->Display.empty()) GTEST_SKIP() << "Xvfb is not installed";
    EXPECT_EQ(Install_Escape_Key(Server->Display), "");
  }
  void TearDown() override { Remove_Escape_Key(); }
  // Looks as a step loop does, until the answer is `wanted`; false after `patience`.
  static bool Becomes(bool wanted, std::chrono::milliseconds patience) {
    const auto end = Clock::now() + patience;
    while (Clock::now() < end) {
      if (Escape_Key_Held() == wanted) return true;
      std::this_thread::sleep_for(std::chrono::microseconds(20));
    }
    return false;
  }
  static constexpr std::chrono::milliseconds Patience{2000}, A_While{50};
  static inline std::optional<X11_Server> Server;
};

TEST_F(Escape_Key_Test, Is_Down_From_Press_To_Release_And_Other_Keys_Do_Not_Count) {
  Server->Key(X11_Server::Escape_Code + 1, true);
  EXPECT_FALSE(Becomes(true, A_While));
  Server->Key(X11_Server::Escape_Code, true);
  EXPECT_TRUE(Becomes(true, Patience));
  EXPECT_FALSE(Becomes(false, A_While)) << "it is held";
  Server->Key(X11_Server::Escape_Code, false);
  EXPECT_TRUE(Becomes(false, Patience));
}

// ESC ended the move before; the key is up again when the next one begins.
TEST_F(Escape_Key_Test, An_Old_Answer_Does_Not_End_The_Next_Move) {
  Server->Key(X11_Server::Escape_Code, true);
  EXPECT_TRUE(Becomes(true, Patience));
  EXPECT_FALSE(Becomes(false, std::chrono::milliseconds(1)));  // a question is on its way
  Server->Key(X11_Server::Escape_Code, false);
  std::this_thread::sleep_for(A_While);
  EXPECT_FALSE(Escape_Key_Held());
  EXPECT_FALSE(Becomes(true, A_While));
}

TEST_F(Escape_Key_Test, A_Server_That_Is_Not_There_Is_Named) {
  EXPECT_EQ(Install_Escape_Key(":60999"), "the X server does not answer");
  EXPECT_FALSE(Escape_Key_Held());
}

}  // namespace
}  // namespace norvik
