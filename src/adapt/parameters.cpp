#include "adapt/parameters.h"

namespace norvik::adapting {

namespace {

constexpr int Last_Local = 30;

}  // namespace

bool Parameters::Is_Local(const Parameter_Name& name) {
  return name.Name.empty() ? name.Number <= Last_Local : name.Name.front() != '_';
}

std::optional<double> Parameters::Get(const Parameter_Name& name) const {
  const Frame& frame = Frame_Of(name);
  if (!name.Name.empty()) {
    const auto found = frame.Names.find(name.Name);
    return found == frame.Names.end() ? std::nullopt : std::optional(found->second);
  }
  if (const auto found = frame.Numbers.find(name.Number); found != frame.Numbers.end()) {
    return found->second;
  }
  return Of_Machine(name.Number);
}

void Parameters::Set(const Parameter_Name& name, double value) {
  Frame& frame = Is_Local(name) ? Frames.back() : Global;
  if (name.Name.empty()) {
    frame.Numbers[name.Number] = value;
  } else {
    frame.Names[name.Name] = value;
  }
}

void Parameters::Enter(const std::vector<double>& arguments) {
  Frames.emplace_back();
  for (int number = 1; number <= Last_Local; ++number) {
    const auto place = static_cast<std::size_t>(number - 1);
    Frames.back().Numbers[number] = place < arguments.size() ? arguments[place] : 0;
  }
}

void Parameters::Leave() {
  if (Frames.size() > 1) Frames.pop_back();
}

}  // namespace norvik::adapting
