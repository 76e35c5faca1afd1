# Read by ctest behind the tests of one room, whose names stand in `room_tests`: the labels of each,
# its room and its kind.
#
#   golden   against files kept beside the tests, pictures included
#   process  starts a program as its operator would
#   ui       windows, on a display that nobody sees
#   slow     takes several seconds, beside one of the above
#   unit     all others
set(slow_tests
  AMillionDraws
  Dxf_Sort_Test.Orders_Like
  ESC_anywhere
  EscapeAtAnyTime
  Every_sample_ends
  Generated_Contours
  Half_a_million
  Isolation_Test
  No_Text_Or_Button_Is_Cut
  Passes_Test.Records_Of_Different_Loads
  Time_Constant_And_Autotune
  ten_million_characters
  table_that_is_full)
list(JOIN slow_tests "|" slow_pattern)

foreach(test IN LISTS room_tests)
  if(test MATCHES "Golden|Samples|Program_Pictures")
    set(kind golden)
  elseif(room STREQUAL "ui")
    set(kind ui)
  elseif(test MATCHES "^(Run_Command_Test|Import_Command_Test|Setup_Command_Test)")
    set(kind process)
  else()
    set(kind unit)
  endif()
  if(test MATCHES "${slow_pattern}")
    list(APPEND kind slow)
  endif()
  set_tests_properties("${test}" PROPERTIES LABELS "${room};${kind}")
endforeach()
