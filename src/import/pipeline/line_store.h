// line_store.h: the records of a line file one by one, or all in memory for the steps that need
// them more than once.
#pragma once

#include "import/pipeline/line.h"
#include "import/pipeline/text_store.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// Hands every record of a line file to `use`; the event queue gets its turn every 500, ESC stops. A
// record that cannot be read, or that fails in `use`, is logged under `fault_name` and left out.
void For_Each_Line(const std::string& line_file, Line_Form form, std::string_view fault_name,
                   const std::function<void(ImportLine& line)>& use);

// Records of the thirteen-field form; the texts, which repeat, are held once.
class Line_Store {
 public:
  void Add(const ImportLine& line);
  std::size_t Size() const { return Held.size(); }
  void Get(std::size_t number, ImportLine& line) const;

  // Start (side 0) or end (side 1) in the plane; both must be present.
  double X(std::size_t number, int side) const;
  double Y(std::size_t number, int side) const;

  // Every record of the file, as `For_Each_Line` gives them.
  void Load(const std::string& line_file, std::string_view fault_name);

 private:
  struct Record {
    Nullable X1, Y1, Z1, X2, Y2, Z2, I, J;
    std::optional<std::int16_t> Type;
    std::int16_t Pen = 0;
    std::int32_t Layer = 0, Cut_Feed = 0, Plunge_Feed = 0;
  };
  std::vector<Record> Held;
  Text_Store Texts;
};

}  // namespace norvik
