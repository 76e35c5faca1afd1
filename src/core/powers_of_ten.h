// powers_of_ten.h: ten to the power of the index, as far as it is exact.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace norvik {

// As doubles, up to the last that a double holds; the first eleven are exact in a single, too.
inline constexpr double Powers_Of_Ten[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                           1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                           1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

inline constexpr std::uint64_t Whole_Powers_Of_Ten[] = {1,
                                                        10,
                                                        100,
                                                        1'000,
                                                        10'000,
                                                        100'000,
                                                        1'000'000,
                                                        10'000'000,
                                                        100'000'000,
                                                        1'000'000'000,
                                                        10'000'000'000,
                                                        100'000'000'000,
                                                        1'000'000'000'000,
                                                        10'000'000'000'000,
                                                        100'000'000'000'000,
                                                        1'000'000'000'000'000};

// True when a number of units of the last place kept, up to 1e13 of them, lies so close to the
// middle between two of them that only its 15 digits decide where it is rounded to.
inline bool Near_Tie(double scaled, double rounded) {
  constexpr double noise_of_15_digits = 1e-14, least = 1e-5;
  return std::abs(std::abs(scaled - rounded) - 0.5) < std::max(least, scaled * noise_of_15_digits);
}

}  // namespace norvik
