# What every target of the project shares: language level, warnings, where programs land, and the functions that declare
# a folder's library and a test program.

option(QN_BENCH "Build the benchmarks" OFF)
option(QN_SIMULATOR "Build the virtual printer and what knows it: programs, desktop face (needs FreeType, libpng)" ON)
include(CMakeDependentOption)
cmake_dependent_option(QN_QT "Build the desktop face (needs Qt 6.4)" ON QN_SIMULATOR OFF)
option(QN_FUZZ "Build the fuzz targets (needs clang)" OFF)
option(QN_REFERENCES "Make the pages and the references of the interfaces as HTML (needs doxygen)" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

include(${CMAKE_CURRENT_LIST_DIR}/Package.cmake)

find_program(QN_CCACHE ccache)
if(QN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QN_CCACHE})
endif()

add_library(qn_build_flags INTERFACE)
target_compile_options(qn_build_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor
                                                -Woverloaded-virtual -Werror)
# GCC 12 sees an overlap in `"literal" + std::string` that is not there.
target_compile_options(qn_build_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

# qn_library(NAME SOURCES … [PUBLIC_LINKS …] [LINKS …] [HIDDEN | LOCAL] [COMPONENT PART]): the library of the folder that calls
# it. Its public headers stand under include/FOLDER/, so a target that does not link it cannot include it. LINKS stay with
# its own sources; PUBLIC_LINKS are those that its public headers include, and reach whoever links it.
#
# A library with public headers is part of the installed package, as qncomm::NAME without the "qn_", and known by that name
# in the project too. HIDDEN installs the archive without its headers, for one that only other libraries use; LOCAL installs
# nothing, for one that only programs use. COMPONENT puts it into a part that hosts ask for by name, because it brings
# dependencies that not every host has.
function(qn_library name)
  cmake_parse_arguments(ARG "HIDDEN;LOCAL" "COMPONENT" "SOURCES;PUBLIC_LINKS;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
                                            $<INSTALL_INTERFACE:${QN_INSTALL_HEADERS}>
                                     PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LINKS} PRIVATE ${ARG_LINKS} $<BUILD_INTERFACE:qn_build_flags>)
  if(IS_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/include AND NOT ARG_LOCAL)
    qn_export(${name} "${ARG_COMPONENT}")
    if(NOT ARG_HIDDEN)
      install(DIRECTORY include/ DESTINATION ${QN_INSTALL_HEADERS} COMPONENT development)
    endif()
  endif()
endfunction()

# qn_test(NAME SOURCES … LINKS … [LABELS …] [ALONE]): a GoogleTest program whose cases ctest runs one by one; ALONE keeps
# others away meanwhile: a program may still hold the lock of a pseudo-terminal's name when its number is given out again.
function(qn_test name)
  cmake_parse_arguments(ARG "ALONE" "" "SOURCES;LINKS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gmock_main qn_build_flags)
  gtest_discover_tests(${name} PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT 60 RUN_SERIAL ${ARG_ALONE} DISCOVERY_TIMEOUT 60)
endfunction()
