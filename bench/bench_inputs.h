// bench_inputs.h: drawings for the importer benchmarks, the same on every machine.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace norvik::bench {

// A small fixed generator, so that no library decides what is measured.
struct Random {
  std::uint64_t State = 88172645463325252ULL;
  int Whole(int low, int high) {
    State ^= State << 13;
    State ^= State >> 7;
    State ^= State << 17;
    return low + static_cast<int>(State % static_cast<std::uint64_t>(high - low + 1));
  }
};

inline std::string Store(const std::string& name, const std::string& text) {
  const std::string path = (std::filesystem::temp_directory_path() / name).string();
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

// Staircases of 3 to 12 lines and a circle now and then, one to a cell, all shuffled; every second
// line runs backwards.
inline std::string Chains_DXF(int entities) {
  Random random;
  std::vector<std::string> items;
  const auto number = [](int n) { return std::to_string(n * 0.125) + "\n"; };
  int side = 1;
  while (side * side * 5 < entities) ++side;
  for (int cell = 0; static_cast<int>(items.size()) < entities; ++cell) {
    int x = cell % side * 96, y = cell / side * 96;
    if (random.Whole(0, 4) == 0) {
      items.push_back("0\nCIRCLE\n8\nCUT\n10\n" + number(x + 8) + "20\n" + number(y + 8) + "40\n" +
                      number(random.Whole(1, 8)));
      continue;
    }
    for (int n = random.Whole(3, 12); n > 0; --n) {
      const int to_x = x + (n % 2 == 0 ? random.Whole(1, 4) : 0);
      const int to_y = y + (n % 2 == 0 ? 0 : random.Whole(1, 4));
      const std::string here = number(x) + "20\n" + number(y),
                        there = number(to_x) + "20\n" + number(to_y);
      const bool back = random.Whole(0, 1) == 1;
      std::string end = back ? here : there;
      end.replace(end.find("20\n"), 2, "21");
      items.push_back("0\nLINE\n8\nCUT\n10\n" + (back ? there : here) + "11\n" + end);
      x = to_x;
      y = to_y;
    }
  }
  for (std::size_t n = items.size(); n > 1; --n) {
    std::swap(items[n - 1],
              items[static_cast<std::size_t>(random.Whole(0, static_cast<int>(n) - 1))]);
  }
  std::string text = "0\nSECTION\n2\nENTITIES\n";
  for (int n = 0; n < entities; ++n) text += items[static_cast<std::size_t>(n)];
  return text + "0\nENDSEC\n0\nEOF\n";
}

// Pen-down strokes in paths of 1 to 9.
inline std::string Strokes_HPGL(int strokes) {
  Random random;
  std::string text = "IN;SP1;\n";
  while (strokes > 0) {
    int x = random.Whole(500, 19820), y = random.Whole(500, 19820);
    text += "PU" + std::to_string(x) + "," + std::to_string(y) + ";\n";
    for (int n = random.Whole(1, 9); n > 0 && strokes > 0; --n, --strokes) {
      x += random.Whole(-300, 300);
      y += random.Whole(-300, 300);
      text += "PD" + std::to_string(x) + "," + std::to_string(y) + ";\n";
    }
  }
  return text + "PU0,0;SP0;\n";
}

// Holes of five tools on a 0.025 inch grid.
inline std::string Holes_Excellon(int holes) {
  Random random;
  std::string text = "M48\nINCH\n";
  for (int tool = 1; tool <= 5; ++tool)
    text += "T0" + std::to_string(tool) + "C0.0" + std::to_string(20 + 4 * tool) + "\n";
  text += "%\n";
  int side = 4;
  while (side * side < 4 * holes) ++side;
  const auto coordinate = [&] { return std::to_string(random.Whole(0, side) * 0.025); };
  for (int tool = 1; tool <= 5; ++tool) {
    text += "T0" + std::to_string(tool) + "\n";
    for (int n = holes / 5; n > 0; --n) {
      const std::string x = coordinate();
      text += "X" + x + "Y" + coordinate() + "\n";
    }
  }
  return text + "T00\nM30\n";
}

}  // namespace norvik::bench
