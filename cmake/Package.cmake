# What `cmake --install` leaves behind, and how another project finds it again: find_package(qncomm [COMPONENTS C Qt VirtualPrinter]),
# or pkg-config for those who build without CMake.
#
# The components of the installation are what a distribution's packages are: programs, library (for C), development (headers,
# archives, package files, examples), designer, python and documents.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Headers keep the spelling that they have here, "control/QNComm.h"; archives stay out of the crowd of the system's own.
set(QN_INSTALL_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/qncomm)
set(QN_INSTALL_ARCHIVES ${CMAKE_INSTALL_LIBDIR}/qncomm)
set(QN_INSTALL_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/qncomm)
# Where the shell looks that was installed by whoever installs this.
set(QN_ZSH_COMPLETIONS share/zsh/site-functions CACHE STRING "Where completions for zsh are installed")

# qn_export(NAME PART): makes a library known as qncomm::NAME, without its "qn_", here and in the installed package; PART
# is empty or the component that brings it.
function(qn_export name part)
  string(REGEX REPLACE "^(qn|qncomm)_" "" public ${name})
  add_library(qncomm::${public} ALIAS ${name})
  set_target_properties(${name} PROPERTIES EXPORT_NAME ${public})
  install(TARGETS ${name} EXPORT qncomm${part}Targets
          ARCHIVE DESTINATION ${QN_INSTALL_ARCHIVES} COMPONENT development)
  set_property(GLOBAL APPEND PROPERTY QN_PACKAGE_PARTS "qncomm${part}Targets")
  get_target_property(type ${name} TYPE)
  if(type STREQUAL "STATIC_LIBRARY" AND NOT part)
    set_property(GLOBAL APPEND PROPERTY QN_PACKAGE_ARCHIVES "-l${name}")
  endif()
endfunction()

# qn_install_program(NAME): the program, its manual page, which it writes by itself, and what makes shells complete its words.
function(qn_install_program name)
  install(TARGETS ${name} RUNTIME COMPONENT programs)
  set(page ${CMAKE_BINARY_DIR}/man/${name}.1)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/man)
  add_custom_command(OUTPUT ${page} COMMAND ${name} --manual > ${page} DEPENDS ${name} VERBATIM)
  add_custom_target(${name}_manual ALL DEPENDS ${page})
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs)
  foreach(shell IN ITEMS bash zsh fish)
    configure_file(${PROJECT_SOURCE_DIR}/packaging/completion/qncomm.${shell} ${CMAKE_BINARY_DIR}/completion/${name}.${shell} @ONLY)
  endforeach()
  set(written ${CMAKE_BINARY_DIR}/completion/${name})
  install(FILES ${written}.bash DESTINATION share/bash-completion/completions COMPONENT programs RENAME ${name})
  install(FILES ${written}.zsh DESTINATION ${QN_ZSH_COMPLETIONS} COMPONENT programs RENAME _${name})
  install(FILES ${written}.fish DESTINATION share/fish/vendor_completions.d COMPONENT programs)
endfunction()

# qn_install_package(): the package files of everything exported so far; called once, after the last folder.
function(qn_install_package)
  get_property(parts GLOBAL PROPERTY QN_PACKAGE_PARTS)
  list(REMOVE_DUPLICATES parts)
  foreach(part IN LISTS parts)
    install(EXPORT ${part} NAMESPACE qncomm:: DESTINATION ${QN_INSTALL_PACKAGE} COMPONENT development)
  endforeach()
  configure_package_config_file(cmake/qncommConfig.cmake.in ${CMAKE_BINARY_DIR}/package/qncommConfig.cmake
                                INSTALL_DESTINATION ${QN_INSTALL_PACKAGE}
                                NO_SET_AND_CHECK_MACRO)
  # Before 1.0 a minor version may change the surface.
  write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/qncommConfigVersion.cmake
                                   COMPATIBILITY SameMinorVersion)
  install(FILES ${CMAKE_BINARY_DIR}/package/qncommConfig.cmake ${CMAKE_BINARY_DIR}/package/qncommConfigVersion.cmake
          DESTINATION ${QN_INSTALL_PACKAGE} COMPONENT development)
  # The same without CMake and without a toolkit, wherever the installation stands: pkg-config --cflags --libs qncomm
  get_property(archives GLOBAL PROPERTY QN_PACKAGE_ARCHIVES)
  list(JOIN archives " " archives)
  file(RELATIVE_PATH root "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/.")
  configure_file(cmake/qncomm.pc.in ${CMAKE_BINARY_DIR}/package/qncomm.pc @ONLY)
  configure_file(cmake/libqncomm.pc.in ${CMAKE_BINARY_DIR}/package/libqncomm.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/package/qncomm.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
  if(QN_SIMULATOR)
    install(FILES ${CMAKE_BINARY_DIR}/package/libqncomm.pc
            DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
  endif()
  install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
          PATTERN examples/CMakeLists.txt EXCLUDE)
  install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents
          FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
  install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
endfunction()
