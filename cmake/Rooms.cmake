# A room is one folder under src/, one library target, and the neighbours it may include.
#
#   Norvik_Room(parallel NEIGHBOURS core)
#   Norvik_Room(compiler_wires FOLDER compiler/wires NEIGHBOURS compiler_arcs INSIDE compiler_tables)
#
# Headers are included by room and name ("core/fault.h"). Each room publishes an include folder of
# its own that holds nothing but links to its own headers, so that the include of a room that is not
# a declared neighbour (or a neighbour's neighbour) does not build. Rooms in a room's folder are rooms
# of their own. Neighbours named under INSIDE are for the sources of the room alone: whoever includes
# the room does not see them.
function(Norvik_Room name)
  cmake_parse_arguments(ROOM "" "FOLDER" "NEIGHBOURS;INSIDE;LIBRARIES" ${ARGN})
  if(NOT ROOM_FOLDER)
    set(ROOM_FOLDER ${name})
  endif()
  set(target norvik_${name})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  if(sources)
    add_library(${target} STATIC ${sources})
    set(scope PUBLIC)
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()

  set(published ${CMAKE_BINARY_DIR}/rooms/${name})
  file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} *.h)
  file(REMOVE_RECURSE ${published})
  file(MAKE_DIRECTORY ${published}/${ROOM_FOLDER})
  foreach(header ${headers})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${header} ${published}/${ROOM_FOLDER}/${header} SYMBOLIC)
  endforeach()
  target_include_directories(${target} ${scope} ${published})

  list(TRANSFORM ROOM_NEIGHBOURS PREPEND norvik_)
  target_link_libraries(${target} ${scope} ${ROOM_NEIGHBOURS})
  if(sources)
    list(TRANSFORM ROOM_INSIDE PREPEND norvik_)
    target_link_libraries(${target} PRIVATE ${ROOM_INSIDE} norvik_flags ${ROOM_LIBRARIES})
  endif()
endfunction()

# All rooms of a folder under one name, for those who may use any of them.
#
#   Norvik_Rooms(import OF pipeline dxf hpgl)      # norvik_import_pipeline, ...
function(Norvik_Rooms name)
  cmake_parse_arguments(ROOMS "" "" "OF" ${ARGN})
  list(TRANSFORM ROOMS_OF PREPEND norvik_${name}_)
  add_library(norvik_${name} INTERFACE)
  target_link_libraries(norvik_${name} INTERFACE ${ROOMS_OF})
endfunction()

# The tests of one room: every .cpp of tests/<name>/ in one program.
#
#   Norvik_Room_Tests(compiler NEIGHBOURS compiler platform_scripted)
function(Norvik_Room_Tests name)
  cmake_parse_arguments(ROOM "" "" "NEIGHBOURS;LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  if(NOT sources)
    return()
  endif()
  set(target test_${name})
  add_executable(${target} ${sources})
  list(TRANSFORM ROOM_NEIGHBOURS PREPEND norvik_)
  target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_compile_definitions(${target} PRIVATE
    NORVIK_TEST_FOLDER="${CMAKE_CURRENT_SOURCE_DIR}/${name}"
    NORVIK_SAMPLES_FOLDER="${CMAKE_SOURCE_DIR}/samples")
  target_link_libraries(${target} PRIVATE
    ${ROOM_NEIGHBOURS} norvik_flags GTest::gmock_main ${ROOM_LIBRARIES})
  # The headers of the test library cost most of a test's build; four sources share them. Tidy wants
  # each source by itself (scripts/lint.sh).
  if(NOT NORVIK_TIDY)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 4)
  endif()
  if(NORVIK_SANITIZE)
    # What is looked at is the product. Checks of undefined behaviour in the tests' own macros more than
    # double the time that this build takes.
    target_compile_options(${target} PRIVATE -O0 -fno-sanitize=undefined)
  endif()
  gtest_discover_tests(${target} NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    TEST_LIST room_tests PROPERTIES TIMEOUT 300)
  # What ctest reads after the names of the tests are known.
  set(labels ${CMAKE_CURRENT_BINARY_DIR}/labels_${name}.cmake)
  file(CONFIGURE OUTPUT ${labels} CONTENT
    "set(room ${name})\ninclude(${CMAKE_CURRENT_SOURCE_DIR}/labels.cmake)\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${labels})
endfunction()
