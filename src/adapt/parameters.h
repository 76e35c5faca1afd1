// parameters.h: what `#1` and `#<name>` stand for.
//
// Numbers 1 to 30 and names without a leading "_" belong to the subprogram that runs; all others to
// the whole program. A parameter that was never set is 0 by number, as controllers have it, and
// not readable by name.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace norvik::adapting {

struct Parameter_Name {
  int Number = 0;    // where `Name` is empty
  std::string Name;  // upper case
};

class Parameters {
 public:
  Parameters() : Frames(1) {}

  std::optional<double> Get(const Parameter_Name& name) const;
  void Set(const Parameter_Name& name, double value);
  // True when it was set by the program or stands for something of the machine.
  bool Exists(const Parameter_Name& name) const { return Get(name).has_value(); }

  // Numbers that the machine fills: position, work offset.
  std::function<std::optional<double>(int number)> Of_Machine = [](int) {
    return std::optional<double>();
  };
  // Told of a number that is read and was never set.
  std::function<void(int number)> Unset = [](int) {};

  void Enter(const std::vector<double>& arguments);
  void Leave();
  std::size_t Depth() const { return Frames.size(); }

 private:
  struct Frame {
    std::map<int, double> Numbers;
    std::map<std::string, double, std::less<>> Names;
  };
  static bool Is_Local(const Parameter_Name& name);
  const Frame& Frame_Of(const Parameter_Name& name) const {
    return Is_Local(name) ? Frames.back() : Global;
  }

  Frame Global;
  std::vector<Frame> Frames;
};

}  // namespace norvik::adapting
