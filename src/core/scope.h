// scope.h: values that must come back however a routine is left.
#pragma once

#include <utility>

namespace norvik {

// Gives `place` a value until the end of the scope, then what it held before.
template <class T>
class Value_In_Scope {
 public:
  Value_In_Scope(T& place, T value) : Place(place), Before(std::exchange(place, value)) {}
  ~Value_In_Scope() { Place = Before; }
  Value_In_Scope(const Value_In_Scope&) = delete;
  Value_In_Scope& operator=(const Value_In_Scope&) = delete;

 private:
  T& Place;
  T Before;
};
template <class T>
Value_In_Scope(T&, T) -> Value_In_Scope<T>;

}  // namespace norvik
