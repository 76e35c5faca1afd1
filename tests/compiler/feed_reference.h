// The feed pass as a plain transcription: whole-table columns with one empty element past the end,
// every search from its start. Slow and simple on purpose; the product must give the same bits.
#pragma once

#include "compiler/state/tables.h"
#include "core/geometry.h"
#include "core/setup.h"

#include <cmath>
#include <vector>

namespace norvik::reference {

struct Feed_Columns {
  explicit Feed_Columns(const Record_List<Wire>& wires)
      : Wire_Total(static_cast<int>(wires.size())),
        Motion(wires.size() + 1),
        D(wires.size() + 1),
        S(D),
        R(D),
        E(D),
        Start(wires.size() + 1, std::vector<double>(5)),
        End(Start) {
    for (std::size_t i = 0; i < wires.size(); ++i) {
      Motion[i] = wires[i].Motion;
      D[i] = wires[i].IPM_D;
      S[i] = wires[i].IPM_S;
      R[i] = wires[i].IPM_R;
      E[i] = wires[i].IPM_E;
      for (int k = 1; k <= 4; ++k) {
        Start[i][static_cast<std::size_t>(k)] = wires[i].Start[k].value_or(0);
        End[i][static_cast<std::size_t>(k)] = wires[i].End[k].value_or(0);
      }
    }
  }

  int Wire_Total;
  std::vector<std::int16_t> Motion;
  std::vector<float> D, S, R, E;
  std::vector<std::vector<double>> Start, End;
  int Backward_Passes = 0, Faults = 0;

  double steps[5], majorSteps, majorSPI;

  static double SPI(int k) { return MachineSetup.Axis_SPI[k]; }
  static double Max(int k) { return MachineSetup.Axis_Max_Feed_Rate[k]; }
  static double Ramp_Start() { return MachineSetup.Axis_Ramp_Start; }
  static double Rate() { return MachineSetup.Axis_Ramp_Rate; }
  static std::size_t at(int i) { return static_cast<std::size_t>(i); }

  void Segment(int i) {
    majorSteps = 0;
    for (int k = 1; k <= 4; ++k) {
      steps[k] = std::trunc(SPI(k) * std::abs(End[at(i)][at(k)] - Start[at(i)][at(k)]));
      if (steps[k] > majorSteps) majorSteps = steps[k];
    }
    for (int k = 1; k <= 4; ++k) {
      if (steps[k] == majorSteps) majorSPI = SPI(k);
    }
  }
  double f(double v) const { return majorSPI * v / 60; }
  double RampVelocity(double n, double v0) const {
    return 60 * (f(v0) + std::trunc(n) * Rate()) / majorSPI;
  }
  bool RampFits(double n, double s, double r, double e) const {
    if (n == 0) return true;
    const double up = std::trunc(std::abs(f(r) - f(s)) / Rate());
    const double down = std::trunc(std::abs(f(e) - f(r)) / Rate());
    return n - up - down > -1;
  }
  double SplitCruise(double n, double s, double e) const {
    const double share = std::trunc(100 * e / (e + s)) / 100;
    return RampVelocity(0.75 * n * share, s);
  }
  static void Limit(float& value, double limit) {
    if (value > limit) value = static_cast<float>(limit);
  }
  int Next(int i) const {
    int j = i + 1;
    while (j < Wire_Total && Motion[at(j)] != 1) ++j;
    return j;
  }

  double SecondaryVelocity(int i) {
    double result = E[at(i)];
    Segment(i);
    if (majorSteps == 0) return result;
    double end[5], start[5], ratio[5];
    for (int k = 1; k <= 4; ++k) end[k] = E[at(i)] * steps[k] / majorSteps;
    const int j = Next(i);
    Segment(j);
    if (majorSteps == 0) return result;
    for (int k = 1; k <= 4; ++k) {
      ratio[k] = steps[k] / majorSteps;
      start[k] = S[at(j)] * ratio[k];
    }
    for (int k = 1; k <= 4; ++k) {
      if (ratio[k] < 1 && (start[k] > Ramp_Start() || end[k] > Ramp_Start()) &&
          std::abs(end[k] - start[k]) > 1) {
        double cap = Ramp_Start() / (end[k] > start[k] ? end[k] : start[k]) * E[at(i)];
        if (cap < Ramp_Start()) cap = Ramp_Start();
        if (cap < result) result = cap;
      }
    }
    return result;
  }

  double Limit_Of_Axes(int i) {
    Segment(i);
    double F = D[at(i)];
    for (int k = 1; k <= 4; ++k) {
      if (steps[k] > 0 && F > Max(k) * majorSteps / steps[k]) F = Max(k) * majorSteps / steps[k];
    }
    for (int k = 1; k <= 4; ++k) {
      if (steps[k] < 1) continue;
      double ratio = (SPI(k) * majorSteps) / (majorSPI * steps[k]);
      if (ratio < 1) ratio = 1;
      if (60 * D[at(i)] / SPI(k) > Max(k)) F = ratio * Max(k);
    }
    return F;
  }

  void GetMotionAngleVelocity(int i) {
    const double F = Limit_Of_Axes(i);
    const int j = Next(i);
    if (j == Wire_Total - 1) R[at(i)] = E[at(i)] = static_cast<float>(Ramp_Start());
    const auto &p0 = Start[at(i)], &p1 = End[at(i)], &p2 = End[at(j)];
    double angle = Corner_Angle(p0[1], p0[2], p0[3], p1[1], p1[2], p1[3], p2[1], p2[2], p2[3]);
    const double cv = MachineSetup.Axis_CV_MotionAngle;
    if (angle > cv) angle = cv;
    if (cv == 0) {
      ++Faults;
      return;
    }
    E[at(i)] = static_cast<float>(Ramp_Start() + (D[at(i)] - Ramp_Start()) * (1 - angle / cv));
    Limit(E[at(i)], F);
    Limit(E[at(i)], RampVelocity(majorSteps, S[at(i)]));
    if (MachineSetup.Axis_Limit_Secondary_Velocity == 1) Limit(E[at(i)], SecondaryVelocity(i));
    Segment(i);
    Limit(R[at(i)], F);
    Limit(E[at(i)], F);
    if (!RampFits(majorSteps, S[at(i)], R[at(i)], E[at(i)])) {
      R[at(i)] = static_cast<float>(SplitCruise(majorSteps, S[at(i)], E[at(i)]));
      if (!RampFits(majorSteps, S[at(i)], R[at(i)], E[at(i)])) {
        R[at(i)] = S[at(i)] > E[at(i)] ? S[at(i)] : E[at(i)];
      }
      Limit(R[at(i)], F);
    }
    if (std::abs(f(E[at(i)]) - f(S[at(i)])) / Rate() - majorSteps > 1) Backward(i, F);
  }

  void Backward(int i, double F) {
    ++Backward_Passes;
    S[at(i)] = static_cast<float>(RampVelocity(majorSteps, E[at(i)]));
    Limit(S[at(i)], F);
    R[at(i)] = static_cast<float>(SplitCruise(majorSteps, S[at(i)], E[at(i)]));
    Limit(R[at(i)], F);
    if (!RampFits(majorSteps, S[at(i)], R[at(i)], E[at(i)])) {
      R[at(i)] = S[at(i)] > E[at(i)] ? S[at(i)] : E[at(i)];
    }
    float next = S[at(i)];
    int j = i;
    bool fits = false;
    while (j > 0 && !fits) {
      --j;
      Segment(j);
      if (Motion[at(j)] != 1) majorSteps = 0;
      Limit(E[at(j)], next);
      fits = RampFits(majorSteps, S[at(j)], R[at(j)], E[at(j)]);
      if (!fits) {
        Limit(S[at(j)], RampVelocity(majorSteps, E[at(j)]));
        R[at(j)] = static_cast<float>(SplitCruise(majorSteps, S[at(j)], E[at(j)]));
        if (!RampFits(majorSteps, S[at(j)], R[at(j)], E[at(j)])) {
          R[at(j)] = S[at(j)] > E[at(j)] ? S[at(j)] : E[at(j)];
        }
      }
      next = S[at(j)];
    }
  }

  void Run() {
    float prevEnd = static_cast<float>(Ramp_Start());
    for (int i = 0; i < Wire_Total; ++i) {
      if (Motion[at(i)] != 1) continue;
      S[at(i)] = prevEnd;
      GetMotionAngleVelocity(i);
      prevEnd = E[at(i)];
    }
  }
};

}  // namespace norvik::reference
