# What is installed, where, and how it is packed. On Windows everything stands in one folder, as
# programs there look for DLLs in their own.
if(WIN32)
  set(CMAKE_INSTALL_BINDIR .)
  set(CMAKE_INSTALL_LIBDIR .)
  set(CMAKE_INSTALL_DOCDIR .)
elseif(NOT CMAKE_INSTALL_DOCDIR)
  set(CMAKE_INSTALL_DOCDIR share/doc/orvane)
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
if(WIN32)
  set(module_prefix "")
  set(simulators_folder simulators)
  set(recorder_folder recorder)
  set(package_folder cmake)
  set(pkgconfig_folder pkgconfig)
else()
  set(module_prefix lib)
  set(simulators_folder lib/orvane/simulators)
  set(recorder_folder lib/orvane/recorder)
  set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Orvane)
  set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()

# How to get from one folder of the installation to another: relative_path(result from to).
function(relative_path result from to)
  set(path /${to})
  cmake_path(RELATIVE_PATH path BASE_DIRECTORY /${from})
  set(${result} ${path} PARENT_SCOPE)
endfunction()

# Modules that are found by name at run time: their import libraries stay behind.
function(install_modules component folder)
  install(TARGETS ${ARGN}
    RUNTIME DESTINATION ${folder} COMPONENT ${component}
    LIBRARY DESTINATION ${folder} COMPONENT ${component}
    ARCHIVE DESTINATION ${folder} COMPONENT unused EXCLUDE_FROM_ALL)
endfunction()

# Folders that an installation makes are open to everybody, whatever the umask; others stay as they
# are.
set(folders ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR} ${CMAKE_INSTALL_INCLUDEDIR}/orvane
    ${CMAKE_INSTALL_DOCDIR} ${simulators_folder}/wd ${recorder_folder} ${package_folder}
    ${pkgconfig_folder})
install(CODE "set(folders \"${folders}\")" ALL_COMPONENTS)
install(CODE [[
  set(new_folders)
  foreach(folder IN LISTS folders)
    set(folder "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${folder}")
    while(NOT EXISTS "${folder}")
      list(APPEND new_folders "${folder}")
      cmake_path(GET folder PARENT_PATH folder)
    endwhile()
  endforeach()
]] ALL_COMPONENTS)

install(TARGETS orvane EXPORT Orvane RUNTIME COMPONENT library LIBRARY COMPONENT library
        ARCHIVE COMPONENT development INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
foreach(module orvane_crypto winscard)
  if(TARGET ${module})
    install_modules(library ${CMAKE_INSTALL_LIBDIR} ${module})
  endif()
endforeach()

if(ORVANE_TOOLS)
  relative_path(libraries ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR})
  set_target_properties(orvane_host PROPERTIES
    INSTALL_RPATH "$ORIGIN;$ORIGIN/${libraries}" BUILD_WITH_INSTALL_RPATH ON)
  install(TARGETS orvane_host COMPONENT program)
  relative_path(simulators ${CMAKE_INSTALL_BINDIR} ${simulators_folder})
  relative_path(recorder ${CMAKE_INSTALL_BINDIR} ${recorder_folder})
  install_modules(program ${recorder_folder} recorder)
  relative_path(documents ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_DOCDIR})
  target_compile_definitions(orvane_host_parts PRIVATE
    "INSTALLED_SIMULATORS=\"${simulators}\"" "INSTALLED_RECORDER=\"${recorder}\""
    "INSTALLED_EXAMPLES=\"${documents}/examples\"")

  # WD's simulator in a folder of its own: beside the library it would stand in the place of the
  # vendor's, which the library takes from there and from nowhere else.
  get_property(simulators GLOBAL PROPERTY ORVANE_SIMULATORS)
  list(REMOVE_ITEM simulators simulator_wdcrwx)
  install_modules(simulators ${simulators_folder} ${simulators})
  install_modules(simulators ${simulators_folder}/wd simulator_wdcrwx)
  get_property(simulator_names GLOBAL PROPERTY ORVANE_SIMULATORS)
  list(TRANSFORM simulator_names REPLACE "^simulator_" "")
  list(JOIN simulator_names " " simulator_names)
  if(NOT WIN32)
    # The library loaded under one of these names has that folder for its own.
    relative_path(libraries ${simulators_folder}/wd ${CMAKE_INSTALL_LIBDIR})
    foreach(name liborvane.so liborvane.so.${PROJECT_VERSION_MAJOR})
      file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/wd)
      file(CREATE_LINK ${libraries}/${name} ${PROJECT_BINARY_DIR}/wd/${name} SYMBOLIC)
      install(FILES ${PROJECT_BINARY_DIR}/wd/${name} DESTINATION ${simulators_folder}/wd
              COMPONENT simulators)
    endforeach()
  endif()
endif()

# What a host is built with.
install(FILES include/orvane.h include/orvane.hpp TYPE INCLUDE COMPONENT development)
install(FILES src/commands/crypto_provider.h simulators/simulator.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvane
        COMPONENT development)
if(TARGET orvane_lib)
  install(FILES ${PROJECT_BINARY_DIR}/orvane.lib TYPE LIB COMPONENT development)
endif()
configure_package_config_file(cmake/OrvaneConfig.cmake.in OrvaneConfig.cmake
  INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(OrvaneConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(EXPORT Orvane NAMESPACE Orvane:: FILE OrvaneTargets.cmake DESTINATION ${package_folder}
        COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake
              ${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake
        DESTINATION ${package_folder} COMPONENT development)
relative_path(up ${pkgconfig_folder} "")
configure_file(cmake/orvane.pc.in orvane.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvane.pc DESTINATION ${pkgconfig_folder}
        COMPONENT development)

install(FILES README.md LICENSE CHANGELOG.md TYPE DOC COMPONENT documentation)
install(DIRECTORY docs examples TYPE DOC COMPONENT documentation
        PATTERN build EXCLUDE PATTERN node_modules EXCLUDE)
if(WIN32)
  # orvane_crypto.dll and the simulators contain these.
  foreach(library libgcrypt libgpg-error)
    set(licence /usr/share/doc/${library}-mingw-w64-dev/copyright)
    if(EXISTS ${licence})
      install(FILES ${licence} DESTINATION licences RENAME ${library}.txt COMPONENT library)
    endif()
  endforeach()
endif()

install(CODE [[
  foreach(folder IN LISTS new_folders)
    if(EXISTS "${folder}")
      file(CHMOD "${folder}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
                                         GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    endif()
  endforeach()
]] ALL_COMPONENTS)

# For script/package.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()
set(CPACK_PACKAGE_NAME orvane)
set(CPACK_PACKAGE_VENDOR "the Orvane authors")
set(CPACK_PACKAGE_CONTACT "the Orvane authors <orvane@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
  # The PC/SC module loads pcsc-lite when it is first called, the program libedit when a person types.
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libpcsclite1, pcscd, libedit2")
endif()
include(CPack)
