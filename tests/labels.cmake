# Read by ctest behind the tests of one room, whose names stand in `room_tests`: the labels of each,
# its room and its kind.
#
#   golden   against files kept beside the tests, pictures included
#   process  starts a program as its operator would
#   ui       windows, on a display that nobody sees
#   slow     takes a second or more
#   unit     all others
foreach(test IN LISTS room_tests)
  if(test MATCHES "Golden|Samples|Program_Pictures")
    set(kind golden)
  elseif(room STREQUAL "ui")
    set(kind ui)
  elseif(test MATCHES "^(Run_Command_Test|Import_Command_Test)")
    set(kind process)
  else()
    set(kind unit)
  endif()
  if(test MATCHES "${room_slow}")
    list(APPEND kind slow)
  endif()
  set_tests_properties("${test}" PROPERTIES LABELS "${room};${kind}")
endforeach()
