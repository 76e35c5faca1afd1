#include "platform/x11/escape_key.h"

#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>

#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace norvik {

namespace {

constexpr xcb_keysym_t Escape_Symbol = 0xFF1B;
using Limits = Escape_Key_Limits;

template <class Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

struct Escape_Key_State {
  xcb_connection_t* Connection = nullptr;
  xcb_keycode_t Code = 0;
  std::optional<unsigned int> Asked;  // number of the question that is not answered yet
  std::int64_t Asked_At = 0, Looked_At = 0, Answered_At = 0;
  bool Down = false;
};
Escape_Key_State Escape_Key;

// Not that of `Platform`, which may be a virtual one: the operator's finger is real.
std::int64_t Real_Clock() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

void Ask(std::int64_t now) {
  Escape_Key.Asked = xcb_query_keymap(Escape_Key.Connection).sequence;
  xcb_flush(Escape_Key.Connection);
  Escape_Key.Asked_At = now;
}

void Look_For_Answer(std::int64_t now) {
  Escape_Key_State& key = Escape_Key;
  key.Looked_At = now;
  void* answer = nullptr;
  xcb_generic_error_t* error = nullptr;
  if (xcb_poll_for_reply(key.Connection, *key.Asked, &answer, &error) == 0) return;
  const Owned<void> owned_answer(answer, &std::free), owned_error(error, &std::free);
  key.Asked.reset();
  if (answer == nullptr) return;
  const auto* keymap = static_cast<const xcb_query_keymap_reply_t*>(answer);
  key.Down = (keymap->keys[key.Code / 8] >> (key.Code % 8) & 1) != 0;
  key.Answered_At = key.Asked_At;
}

// The key that gives ESC without a modifier; 0: the keyboard has none.
xcb_keycode_t Code_Of_Escape(xcb_connection_t* connection) {
  const xcb_setup_t* setup = xcb_get_setup(connection);
  const int count = setup->max_keycode - setup->min_keycode + 1;
  const Owned<xcb_get_keyboard_mapping_reply_t> mapping(
      xcb_get_keyboard_mapping_reply(
          connection,
          xcb_get_keyboard_mapping(connection, setup->min_keycode, static_cast<uint8_t>(count)),
          nullptr),
      &std::free);
  if (!mapping) return 0;
  const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
  const int length = xcb_get_keyboard_mapping_keysyms_length(mapping.get());
  const int each = mapping->keysyms_per_keycode;
  for (int place = 0; each > 0 && place < length; place += each)
    if (symbols[place] == Escape_Symbol)
      return static_cast<xcb_keycode_t>(setup->min_keycode + place / each);
  return 0;
}

}  // namespace

std::string Install_Escape_Key(const std::string& display) {
  Remove_Escape_Key();
  xcb_connection_t* connection = xcb_connect(display.empty() ? nullptr : display.c_str(), nullptr);
  if (xcb_connection_has_error(connection) != 0) {
    xcb_disconnect(connection);
    return "the X server does not answer";
  }
  Escape_Key.Connection = connection;
  Escape_Key.Code = Code_Of_Escape(connection);
  if (Escape_Key.Code == 0) {
    Remove_Escape_Key();
    return "the keyboard has no ESC key";
  }
  return "";
}

bool Escape_Key_Held() {
  Escape_Key_State& key = Escape_Key;
  if (key.Connection == nullptr) return false;
  const std::int64_t now = Real_Clock();
  if (key.Asked && now - key.Looked_At >= Limits::Look_ns) Look_For_Answer(now);
  if (!key.Asked && now - key.Asked_At >= Limits::Ask_ns) Ask(now);
  return key.Down && now - key.Answered_At < Limits::Fresh_ns;
}

void Remove_Escape_Key() {
  if (Escape_Key.Connection != nullptr) xcb_disconnect(Escape_Key.Connection);
  Escape_Key = {};
}

}  // namespace norvik
