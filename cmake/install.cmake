# What is installed, and where. On Windows everything stands in one folder, as programs there look for
# DLLs in their own.
if(WIN32)
  set(CMAKE_INSTALL_BINDIR .)
  set(CMAKE_INSTALL_LIBDIR .)
  set(CMAKE_INSTALL_DOCDIR .)
  set(site_folder docs/html)
elseif(NOT CMAKE_INSTALL_DOCDIR)
  set(CMAKE_INSTALL_DOCDIR share/doc/orvane)
endif()
include(GNUInstallDirs)
if(NOT site_folder)
  set(site_folder ${CMAKE_INSTALL_DOCDIR}/html)
endif()
include(CMakePackageConfigHelpers)
set(architecture_folder lib/${CMAKE_LIBRARY_ARCHITECTURE})

# How to get from one folder of the installation to another: relative_path(result from to).
function(relative_path result from to)
  set(path /${to})
  cmake_path(RELATIVE_PATH path BASE_DIRECTORY /${from})
  set(${result} ${path} PARENT_SCOPE)
endfunction()

if(ORVANE_TOOLS)
  # The program looks for modules where the library does.
  set(run_path $ORIGIN)
  foreach(folder ${CMAKE_INSTALL_LIBDIR} ${architecture_folder})
    relative_path(libraries ${CMAKE_INSTALL_BINDIR} ${folder})
    list(APPEND run_path $ORIGIN/${libraries} $ORIGIN/${libraries}/orvane)
  endforeach()
  list(REMOVE_DUPLICATES run_path)
  set_target_properties(orvane_host PROPERTIES
    INSTALL_RPATH "${run_path}" BUILD_WITH_INSTALL_RPATH ON)
  relative_path(documents ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_DOCDIR})
  target_compile_definitions(orvane_host_parts PRIVATE
    "INSTALLED_EXAMPLES=\"${documents}/examples\"")
endif()

# The folders of the installation that the rules below are for. Its libraries are in libdir, the names
# of its components begin with prefix. With EXCLUDE_FROM_ALL only those who name a component install it.
macro(choose_installation libdir_ prefix_)
  set(libdir ${libdir_})
  set(prefix ${prefix_})
  set(exclude ${ARGN})
  set(generated ${PROJECT_BINARY_DIR}/${prefix}installation)
  if(WIN32)
    set(module_prefix "")
    set(modules_folder .)
    set(simulators_folder simulators)
    set(recorder_folder recorder)
    set(package_folder cmake)
    set(pkgconfig_folder pkgconfig)
  else()
    set(module_prefix lib)
    set(modules_folder ${libdir}/orvane)
    set(simulators_folder ${modules_folder}/simulators)
    set(recorder_folder ${modules_folder}/recorder)
    set(package_folder ${libdir}/cmake/Orvane)
    set(pkgconfig_folder ${libdir}/pkgconfig)
  endif()
endmacro()

# Modules that are found by name at run time: their import libraries stay behind.
function(install_modules component folder)
  install(TARGETS ${ARGN}
    RUNTIME DESTINATION ${folder} COMPONENT ${component} ${exclude}
    LIBRARY DESTINATION ${folder} COMPONENT ${component} ${exclude}
    ARCHIVE DESTINATION ${folder} COMPONENT unused EXCLUDE_FROM_ALL)
endfunction()

# WD's simulator in a folder of its own: beside the library it would stand in the place of the
# vendor's, which the library takes from there and from nowhere else.
function(install_simulators)
  get_property(simulators GLOBAL PROPERTY ORVANE_SIMULATORS)
  list(REMOVE_ITEM simulators simulator_wdcrwx)
  install_modules(${prefix}simulators ${simulators_folder} ${simulators})
  install_modules(${prefix}simulators ${simulators_folder}/wd simulator_wdcrwx)
  if(WIN32)
    return()
  endif()
  # The library loaded under one of these names has that folder for its own.
  relative_path(libraries ${simulators_folder}/wd ${libdir})
  foreach(name liborvane.so liborvane.so.${PROJECT_VERSION_MAJOR})
    file(MAKE_DIRECTORY ${generated}/wd)
    file(CREATE_LINK ${libraries}/${name} ${generated}/wd/${name} SYMBOLIC)
    install(FILES ${generated}/wd/${name} DESTINATION ${simulators_folder}/wd
            COMPONENT ${prefix}simulators ${exclude})
  endforeach()
endfunction()

# What a host is built with.
function(install_development)
  install(FILES include/orvane.h include/orvane.hpp TYPE INCLUDE
          COMPONENT ${prefix}development ${exclude})
  install(FILES src/commands/crypto_provider.h simulators/simulator.h
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvane COMPONENT ${prefix}development ${exclude})
  if(TARGET orvane_lib)
    install(FILES ${PROJECT_BINARY_DIR}/orvane.lib TYPE LIB COMPONENT ${prefix}development)
  endif()
  get_property(simulator_names GLOBAL PROPERTY ORVANE_SIMULATORS)
  list(TRANSFORM simulator_names REPLACE "^simulator_" "")
  list(JOIN simulator_names " " simulator_names)
  configure_package_config_file(cmake/OrvaneConfig.cmake.in ${generated}/OrvaneConfig.cmake
    INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file(${generated}/OrvaneConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(EXPORT ${prefix}Orvane NAMESPACE Orvane:: FILE OrvaneTargets.cmake
          DESTINATION ${package_folder} COMPONENT ${prefix}development ${exclude})
  install(FILES ${generated}/OrvaneConfig.cmake ${generated}/OrvaneConfigVersion.cmake
          DESTINATION ${package_folder} COMPONENT ${prefix}development ${exclude})
  relative_path(up ${pkgconfig_folder} "")
  configure_file(cmake/orvane.pc.in ${generated}/orvane.pc @ONLY)
  install(FILES ${generated}/orvane.pc DESTINATION ${pkgconfig_folder}
          COMPONENT ${prefix}development ${exclude})
endfunction()

# What reads the description of the command line besides the program.
set(page_files orvane.1 orvane _orvane)
set(page_folders ${CMAKE_INSTALL_MANDIR}/man1 ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
function(install_pages)
  if(WIN32 OR NOT TARGET pages)
    return()
  endif()
  set(pages ${PROJECT_BINARY_DIR}/pages)
  foreach(file folder IN ZIP_LISTS page_files page_folders)
    install(FILES ${pages}/${file} DESTINATION ${folder} COMPONENT ${prefix}program ${exclude})
  endforeach()
endfunction()

# Without what no page calls.
function(install_site)
  if(NOT TARGET site)
    return()
  endif()
  set(site ${PROJECT_BINARY_DIR}/site)
  install(DIRECTORY ${site}/html/ DESTINATION ${site_folder} COMPONENT ${prefix}program ${exclude}
          REGEX "/(\\.buildinfo|objects\\.inv|_static/.*(jquery|underscore|frameworks).*\\.js)$" EXCLUDE)
  if(NOT WIN32)
    install(DIRECTORY ${site}/man/man3 DESTINATION ${CMAKE_INSTALL_MANDIR}
            COMPONENT ${prefix}development ${exclude})
  endif()
endfunction()

# The rules of the installation whose folders are chosen.
function(install_all)
  install(TARGETS orvane EXPORT ${prefix}Orvane
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${prefix}library ${exclude}
    LIBRARY DESTINATION ${libdir} COMPONENT ${prefix}library ${exclude}
            NAMELINK_COMPONENT ${prefix}development
    ARCHIVE DESTINATION ${libdir} COMPONENT ${prefix}development ${exclude}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  foreach(module orvane_crypto winscard)
    if(TARGET ${module})
      install_modules(${prefix}library ${modules_folder} ${module})
    endif()
  endforeach()
  if(ORVANE_TOOLS)
    install(TARGETS orvane_host COMPONENT ${prefix}program ${exclude})
    install_modules(${prefix}program ${recorder_folder} recorder)
    install_pages()
    install_simulators()
  endif()
  install_development()
  install(FILES README.md CHANGELOG.md CONTRIBUTING.md TYPE DOC COMPONENT ${prefix}program ${exclude})
  install(DIRECTORY docs examples editors TYPE DOC COMPONENT ${prefix}program ${exclude}
          PATTERN build EXCLUDE PATTERN node_modules EXCLUDE)
  install_site()
endfunction()

choose_installation(${CMAKE_INSTALL_LIBDIR} "")

# Folders that an installation makes are open to everybody, whatever the umask; others stay as they
# are.
set(folders ${CMAKE_INSTALL_BINDIR} ${libdir} ${CMAKE_INSTALL_INCLUDEDIR}/orvane
    ${CMAKE_INSTALL_DOCDIR} ${simulators_folder}/wd ${recorder_folder} ${package_folder}
    ${pkgconfig_folder})
if(TARGET pages AND NOT WIN32)
  list(APPEND folders ${page_folders})
endif()
if(TARGET site)
  list(APPEND folders ${site_folder})
  if(NOT WIN32)
    list(APPEND folders ${CMAKE_INSTALL_MANDIR}/man3)
  endif()
endif()
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

install_all()
install(FILES LICENSE TYPE DOC COMPONENT program)
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

if(PROJECT_IS_TOP_LEVEL AND ORVANE_TOOLS)
  include(cmake/package.cmake)
endif()
