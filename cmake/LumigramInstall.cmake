# The files of `cmake --install` and of `cpack`. No installed file contains an absolute path, so that an installed tree can be
# moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# find_package(lumigram) gives lumigram::lumigram; so does add_subdirectory().
add_library(lumigram::lumigram ALIAS LumigramJniNative)
set_target_properties(LumigramJniNative PROPERTIES EXPORT_NAME lumigram)
target_include_directories(LumigramJniNative INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS LumigramJniNative EXPORT lumigram DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/lumigram.h TYPE INCLUDE)
if(TARGET lumigram_jar)
  # The classes alone: the library is installed beside them.
  install(FILES ${PROJECT_BINARY_DIR}/lumigram-classes.jar DESTINATION ${CMAKE_INSTALL_DATADIR}/java RENAME lumigram.jar)
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/lumigram)
write_basic_package_version_file(lumigram-config-version.cmake COMPATIBILITY SameMinorVersion)
install(EXPORT lumigram NAMESPACE lumigram:: FILE lumigram-config.cmake DESTINATION ${package_dir})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lumigram-config-version.cmake DESTINATION ${package_dir})

# pkg-config sets pcfiledir to the folder of the .pc file. The prefix is relative to it: one ".." for each folder in between.
set(pc_prefix ${CMAKE_INSTALL_PREFIX})
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH steps /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  set(pc_prefix "\${pcfiledir}/${steps}")
  string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
endif()
cmake_path(APPEND pc_libdir "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND pc_includedir "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
configure_file(cmake/lumigram.pc.in lumigram.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lumigram.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# A Debian package. Its dependencies are computed from the linked files.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CROSSCOMPILING)
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${LUMIGRAM_OWNER} <${LUMIGRAM_EMAIL}>")
  set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${LUMIGRAM_HOMEPAGE})
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/package/triggers)
  configure_file(cmake/debian-triggers package/triggers COPYONLY)
  set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianPackage.cmake)
  set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_BINARY_DIR}/package/project.cmake)
  file(CONFIGURE OUTPUT package/project.cmake @ONLY CONTENT [[
set(LUMIGRAM_SOURCE "@PROJECT_SOURCE_DIR@")
set(LUMIGRAM_OWNER "@LUMIGRAM_OWNER@")
set(LUMIGRAM_EMAIL "@LUMIGRAM_EMAIL@")
set(LUMIGRAM_HOMEPAGE "@LUMIGRAM_HOMEPAGE@")
set(LUMIGRAM_LICENSE "@LUMIGRAM_LICENSE@")
]])
  set(CPACK_DEBIAN_PACKAGE_SECTION libs)
  set(CPACK_PACKAGE_DESCRIPTION
"The library, its C header and its Java classes. They read and write the labels,
category, type, tag groups and named blobs of GIF, PNG and JPEG files.")
  if(TARGET lumigram)
    string(APPEND CPACK_PACKAGE_DESCRIPTION "\nThe command line tool, lumigram, does the same at a shell.")
  endif()
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS default-jre-headless)
  set(CPACK_STRIP_FILES ON)
  include(CPack)
endif()
