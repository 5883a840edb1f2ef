# Shared build settings and the helpers every folder uses.

set(ORVANE_WARNINGS -Wall -Wextra -Wpedantic)
if(ORVANE_WERROR)
  list(APPEND ORVANE_WARNINGS -Werror)
endif()

if(ORVANE_SANITIZE)
  set(ORVANE_SAN_FLAGS -fsanitize=address,undefined,float-cast-overflow
      -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_options(${ORVANE_SAN_FLAGS})
  add_link_options(${ORVANE_SAN_FLAGS})
endif()

if(ORVANE_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()

# orvane_add_library(<folder> [DEPS targets...] [SYSTEM_DEPS targets...])
# Builds every .cpp of the folder into the static library orvane_<folder>, with hidden symbols:
# only what a header marks ORVANE_API leaves liborvane, which is made of these objects.
# A folder beside the system's own (io/) reaches the system through its consumer's choice: the
# shared library where the consumer sets ORVANE_LINK_SHARED, else the static folder libraries,
# so that one program never holds two copies of the system's state.
function(orvane_add_library folder)
  cmake_parse_arguments(ARG "" "" "DEPS;SYSTEM_DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(orvane_${folder} STATIC ${sources})
  set_target_properties(orvane_${folder} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(orvane_${folder} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  target_compile_options(orvane_${folder} PRIVATE ${ORVANE_WARNINGS})
  if(folder IN_LIST ORVANE_SYSTEM_FOLDERS)
    target_link_libraries(orvane_${folder} PUBLIC ${ARG_DEPS} ${ARG_SYSTEM_DEPS})
  else()
    foreach(dep IN LISTS ARG_DEPS)
      target_link_libraries(orvane_${folder} PUBLIC
          "$<IF:$<BOOL:$<TARGET_PROPERTY:ORVANE_LINK_SHARED>>,orvane_shared,${dep}>")
    endforeach()
    target_link_libraries(orvane_${folder} PUBLIC ${ARG_SYSTEM_DEPS})
  endif()
endfunction()

# orvane_add_tests(<folder> [DEPS targets...])
# Builds every .cpp of tests/<folder> into orvane_<folder>_tests and registers its tests.
function(orvane_add_tests folder)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_executable(orvane_${folder}_tests ${sources})
  target_compile_options(orvane_${folder}_tests PRIVATE ${ORVANE_WARNINGS})
  target_link_libraries(orvane_${folder}_tests PRIVATE ${ARG_DEPS} orvane_test_support
      GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(orvane_${folder}_tests DISCOVERY_MODE PRE_TEST
      PROPERTIES LABELS ${folder})
endfunction()
