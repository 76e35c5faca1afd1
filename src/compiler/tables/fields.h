// fields.h: the fields of both records in the order of their files.
//
// The one list that reader and writer of the tables walk; internal to them and their tests.
#pragma once

#include "compiler/state/tables.h"

#include <tuple>

namespace norvik {

// A field that is a member by itself.
template <class Record, class Member>
struct Field_Row {
  const char* Name;
  Member Record::*Place;

  constexpr Member& Of(Record& record) const { return record.*Place; }
  constexpr const Member& Of(const Record& record) const { return record.*Place; }
};

// A field that is one entry of an indexed member.
template <class Record, class Item, int First, int Last>
struct Entry_Row {
  const char* Name;
  Indexed<Item, First, Last> Record::*Place;
  int Index;

  constexpr Item& Of(Record& record) const { return (record.*Place)[Index]; }
  constexpr const Item& Of(const Record& record) const { return (record.*Place)[Index]; }
};

template <class Record, class Member>
constexpr auto Row(const char* name, Member Record::*place) {
  return Field_Row<Record, Member>{name, place};
}
template <class Record, class Item, int First, int Last>
constexpr auto Row(const char* name, Indexed<Item, First, Last> Record::*place, int index) {
  return Entry_Row<Record, Item, First, Last>{name, place, index};
}

template <class Record>
inline constexpr int Table_Fields = 0;

template <>
inline constexpr auto Table_Fields<LineArc> = std::tuple{
    Row("LineNumber", &LineArc::LineNumber),
    Row("RecordType", &LineArc::RecordType),
    Row("RecordFlag", &LineArc::RecordFlag),
    Row("StartX", &LineArc::Start, 1),
    Row("StartY", &LineArc::Start, 2),
    Row("StartZ", &LineArc::Start, 3),
    Row("StartA", &LineArc::Start, 4),
    Row("Start5", &LineArc::Start, 5),
    Row("Start6", &LineArc::Start, 6),
    Row("EndX", &LineArc::End, 1),
    Row("EndY", &LineArc::End, 2),
    Row("EndZ", &LineArc::End, 3),
    Row("EndA", &LineArc::End, 4),
    Row("End5", &LineArc::End, 5),
    Row("End6", &LineArc::End, 6),
    Row("CenterI", &LineArc::CenterI),
    Row("CenterJ", &LineArc::CenterJ),
    Row("ArcDirection", &LineArc::ArcDirection),
    Row("OutSpindleCW", &LineArc::Out, 0),
    Row("OutSpindleCCW", &LineArc::Out, 1),
    Row("OutMist", &LineArc::Out, 2),
    Row("OutFlood", &LineArc::Out, 3),
    Row("OutAux", &LineArc::Out, 4),
    Row("ToolNumber", &LineArc::ToolNumber),
    Row("FeedMove", &LineArc::FeedMove),
    Row("PauseTime", &LineArc::PauseTime),
    Row("CompMode", &LineArc::CompMode),
    Row("Feed1", &LineArc::Feed, 1),
    Row("Feed2", &LineArc::Feed, 2),
    Row("Feed3", &LineArc::Feed, 3),
    Row("Feed4", &LineArc::Feed, 4),
    Row("SourceText", &LineArc::SourceText),
    Row("SpindleSpeed", &LineArc::SpindleSpeed),
    Row("SpareFlag", &LineArc::SpareFlag),
    Row("SpareWord", &LineArc::SpareWord),
    Row("WaitInput", &LineArc::WaitInput),
};

template <>
inline constexpr auto Table_Fields<Wire> = std::tuple{
    Row("Step", &Wire::Step),
    Row("Motion", &Wire::Motion),
    Row("Start_X", &Wire::Start, 1),
    Row("Start_Y", &Wire::Start, 2),
    Row("Start_Z", &Wire::Start, 3),
    Row("Start_A", &Wire::Start, 4),
    Row("Start_B", &Wire::Start, 5),
    Row("Start_C", &Wire::Start, 6),
    Row("End_X", &Wire::End, 1),
    Row("End_Y", &Wire::End, 2),
    Row("End_Z", &Wire::End, 3),
    Row("End_A", &Wire::End, 4),
    Row("End_B", &Wire::End, 5),
    Row("End_C", &Wire::End, 6),
    Row("Out_0", &Wire::Out, 0),
    Row("Out_1", &Wire::Out, 1),
    Row("Out_2", &Wire::Out, 2),
    Row("Out_3", &Wire::Out, 3),
    Row("Out_4", &Wire::Out, 4),
    Row("Tool", &Wire::Tool),
    Row("FeedMove", &Wire::FeedMove),
    Row("Dwell", &Wire::Dwell),
    Row("Cutter_Comp", &Wire::Cutter_Comp),
    Row("IPM_D", &Wire::IPM_D),
    Row("IPM_S", &Wire::IPM_S),
    Row("IPM_R", &Wire::IPM_R),
    Row("IPM_E", &Wire::IPM_E),
    Row("Block_Text", &Wire::Block_Text),
    Row("S_Word", &Wire::S_Word),
    Row("Reserved", &Wire::Reserved),
    Row("Repeat", &Wire::Repeat),
    Row("Aux_Wait", &Wire::Aux_Wait),
};

template <class Record>
inline constexpr std::size_t Field_Count = std::tuple_size_v<decltype(Table_Fields<Record>)>;
static_assert(Field_Count<LineArc> == 36 && Field_Count<Wire> == 32);

// Calls `visit` with each row of the list, first to last.
template <class Record, class Visit>
constexpr void For_Each_Field(Visit&& visit) {
  std::apply([&](const auto&... row) { (visit(row), ...); }, Table_Fields<Record>);
}

}  // namespace norvik
