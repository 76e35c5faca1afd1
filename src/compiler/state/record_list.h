// record_list.h: the rows of a big table, in pieces.
//
// Grows at its end like a std::vector, but never moves a row: the rows lie in pieces of 512, so
// that appending copies nothing and no moment of a compile holds a table twice. A pass that walks a
// table once gives the pieces behind it back (`Release_Before`), so that a program's records leave
// memory as its wires enter it.
//
// An index that holds no row, released ones included, raises an out-of-range fault.
#pragma once

#include "compiler/state/piece_memory.h"
#include "core/fault.h"
#include "core/indexed.h"

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace norvik {

template <class Record>
class Record_List {
  static_assert(std::is_trivially_destructible_v<Record> && std::is_trivially_copyable_v<Record>);

  template <class List, class Item>
  class Walker {
   public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = Record;
    using difference_type = std::ptrdiff_t;
    using pointer = Item*;
    using reference = Item&;

    Walker() = default;
    Walker(List* list, std::size_t place) : Owner(list), Place(place) {}
    // A walker that only reads, from one that may write.
    operator Walker<const List, const Item>() const { return {Owner, Place}; }

    reference operator*() const { return (*Owner)[Place]; }
    pointer operator->() const { return &(*Owner)[Place]; }
    reference operator[](difference_type by) const { return *(*this + by); }
    Walker& operator+=(difference_type by) {
      Place += static_cast<std::size_t>(by);
      return *this;
    }
    Walker& operator-=(difference_type by) { return *this += -by; }
    Walker& operator++() { return *this += 1; }
    Walker& operator--() { return *this += -1; }
    Walker operator++(int) { return std::exchange(*this, *this + 1); }
    Walker operator--(int) { return std::exchange(*this, *this - 1); }
    friend Walker operator+(Walker at, difference_type by) { return at += by; }
    friend Walker operator+(difference_type by, Walker at) { return at += by; }
    friend Walker operator-(Walker at, difference_type by) { return at -= by; }
    friend difference_type operator-(const Walker& a, const Walker& b) {
      return static_cast<difference_type>(a.Place) - static_cast<difference_type>(b.Place);
    }
    friend bool operator==(const Walker& a, const Walker& b) { return a.Place == b.Place; }
    friend auto operator<=>(const Walker& a, const Walker& b) { return a.Place <=> b.Place; }

   private:
    List* Owner = nullptr;
    std::size_t Place = 0;
  };

 public:
  using value_type = Record;
  using iterator = Walker<Record_List, Record>;
  using const_iterator = Walker<const Record_List, const Record>;

  // Rows of one piece; memory comes and goes by these.
  static constexpr std::size_t Piece_Rows = Piece_Size / sizeof(Record);

  Record_List() = default;
  Record_List(std::initializer_list<Record> rows) {
    for (const Record& row : rows) push_back(row);
  }
  Record_List(const Record_List& other) { *this = other; }
  Record_List(Record_List&& other) noexcept { *this = std::move(other); }
  Record_List& operator=(const Record_List& other) {
    if (this == &other) return *this;
    clear();
    for (const Record& row : other) push_back(row);
    return *this;
  }
  Record_List& operator=(Record_List&& other) noexcept {
    Pieces = std::exchange(other.Pieces, {});
    Count = std::exchange(other.Count, 0);
    Released = std::exchange(other.Released, 0);
    return *this;
  }
  ~Record_List() = default;

  std::size_t size() const { return Count; }
  bool empty() const { return Count == 0; }

  Record& operator[](std::size_t index) { return *Row(index); }
  const Record& operator[](std::size_t index) const { return *Row(index); }
  Record& front() { return *Row(0); }
  const Record& front() const { return *Row(0); }
  Record& back() { return *Row(Count - 1); }
  const Record& back() const { return *Row(Count - 1); }

  iterator begin() { return {this, 0}; }
  iterator end() { return {this, Count}; }
  const_iterator begin() const { return {this, 0}; }
  const_iterator end() const { return {this, Count}; }

  // `row` may be one of this list's own.
  Record& push_back(const Record& row) {
    if (Count == Pieces.size() * Piece_Rows) Pieces.emplace_back(Take_Piece());
    Record* place = std::construct_at(Place_Of(Count), row);
    ++Count;
    return *place;
  }

  void clear() { *this = Record_List(); }

  // Drops the rows from `count` on; does nothing when there are no more than that.
  void Cut_To(std::size_t count) {
    if (count >= Count) return;
    Count = count;
    Pieces.resize((count + Piece_Rows - 1) / Piece_Rows);
  }

  // Gives back the memory of the pieces whose rows all lie before `index`; their indices stay
  // counted and must not be used again.
  void Release_Before(std::size_t index) {
    for (; (Released + 1) * Piece_Rows <= index && Released < Pieces.size(); ++Released) {
      Pieces[Released].reset();
    }
  }

  bool operator==(const Record_List& other) const {
    if (Count != other.Count) return false;
    for (std::size_t i = 0; i < Count; ++i) {
      if (!((*this)[i] == other[i])) return false;
    }
    return true;
  }

 private:
  // Where a row lies or, from its `push_back` on, lives.
  Record* Place_Of(std::size_t index) const {
    return static_cast<Record*>(Pieces[index / Piece_Rows].get()) + index % Piece_Rows;
  }

  Record* Row(std::size_t index) const {
    if (index >= Count || index / Piece_Rows < Released) {
      Raise_Index_Fault(static_cast<long long>(index),
                        static_cast<long long>(Released * Piece_Rows),
                        static_cast<long long>(Count) - 1);
    }
    return Place_Of(index);
  }

  std::vector<Memory_Piece> Pieces;
  std::size_t Count = 0;
  std::size_t Released = 0;  // pieces given back, from the first on
};

}  // namespace norvik
