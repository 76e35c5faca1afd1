#include "core/messages.h"

#include <algorithm>

namespace norvik {

Message_State Messages;
Messages_Host_Operations Messages_Host;

namespace {

void Show_List() {
  std::string& box = Messages.Status_Box;
  box.clear();
  for (const std::string& line : Messages.MessageLog) box.append(line).append("\r\n");
  Messages_Host.List_Changed();
}

}  // namespace

void SetStatus(int panel, std::string_view text, int seconds) {
  Set_Panel(panel, text);
  if (panel <= Messages.Status_Timeout.last) {
    Messages.Status_Timeout[panel] = static_cast<std::int16_t>(std::clamp(seconds, -1, 32767));
  }
}

void Set_Panel(int panel, std::string_view text) {
  Messages.Panel[panel] = text;
  Messages_Host.Panel_Changed(panel);
}

void Tell(std::string_view text, int seconds) {
  SetStatus(1, text, seconds);
  Add_New_Message(text);
}

void Clear_Standing_Status() {
  constexpr int longest_passing = 10;  // seconds
  const int left = Messages.Status_Timeout[1];
  const bool stays = left < 0 || left > longest_passing;
  if (stays && !Messages.Panel[1].empty()) SetStatus(1, "", -1);
}

Progress_Status::~Progress_Status() {
  if (Messages.Panel[1].starts_with(Beginning)) SetStatus(1, "", -1);
}

void AddMessage(std::string_view text) {
  auto& log = Messages.MessageLog;
  Messages.LastMessage = text;
  std::rotate(log.begin(), log.end() - 1, log.end());
  log.front() = Messages.LastMessage;
  Show_List();
}

void Add_New_Message(std::string_view text) {
  constexpr std::size_t looked_at = 5;
  const auto first = Messages.MessageLog.begin();
  if (std::find(first, first + looked_at, text) == first + looked_at) AddMessage(text);
}

void Age_Status_Panels() {
  for (int panel = 1; panel <= Messages.Status_Timeout.last; ++panel) {
    std::int16_t& left = Messages.Status_Timeout[panel];
    if (left < 0) continue;
    --left;
    if (left == 0 && panel != 2) Set_Panel(panel, "");
  }
}

}  // namespace norvik
