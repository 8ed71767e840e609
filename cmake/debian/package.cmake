# The Debian packages. cmake/debian/finish does what CPack has no word for.
choose_installation(${architecture_folder} debian_ EXCLUDE_FROM_ALL)
install_all()

function(set_package component name section)
  string(TOUPPER debian_${component} component)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  string(STRIP "${ARGN}" description)
  set(CPACK_DEBIAN_${component}_DESCRIPTION "${description}" PARENT_SCOPE)
endfunction()
set_package(library liborvane${PROJECT_VERSION_MAJOR} libs [[
card scripts and smart-card readers - shared library
Runs a small card-script language one statement at a time, drives ten
kinds of card reader behind one interface, takes BER-TLV apart, and converts
between octets, text and times. Its default crypto module and its module for
PC/SC readers come with it.
]])
set_package(development liborvane-dev libdevel [[
card scripts and smart-card readers - development files
Headers for C and C++, and what CMake and pkg-config read, to build programs
that run card scripts and drive smart-card readers with liborvane.
]])
set_package(program orvane utils [[
run card scripts and drive smart-card readers
For people who test, personalise and debug smart cards: runs scripts, sends
commands and shows what the card answers, records sessions, runs test cases,
takes BER-TLV apart.
]])
set_package(simulators orvane-simulators utils [[
simulated smart card and readers for Orvane
A virtual card, and a stand-in for the library of each maker of card readers:
card scripts and programs that use liborvane run without hardware.
]])

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL debian_library debian_development debian_program debian_simulators)
# Not in front of each package's own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE orvane)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
foreach(component DEVELOPMENT PROGRAM SIMULATORS)
  set(CPACK_COMPONENT_DEBIAN_${component}_DEPENDS debian_library)
endforeach()
# The PC/SC module loads pcsc-lite when it is first called, the program libedit when a person types
# and libpq when stations share a batch.
set(CPACK_DEBIAN_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "libpcsclite1, pcscd")
set(CPACK_DEBIAN_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS "libedit2, orvane-simulators")
set(CPACK_DEBIAN_DEBIAN_PROGRAM_PACKAGE_SUGGESTS libpq5)

# All of what the library exports is there since its first release.
set(soname liborvane.so.${PROJECT_VERSION_MAJOR})
set(package liborvane${PROJECT_VERSION_MAJOR})
set(control ${PROJECT_BINARY_DIR}/debian_installation)
file(STRINGS src/orvane.def symbols REGEX "^  ")
list(TRANSFORM symbols REPLACE "^ +(.*)$" " \\1@Base ${PROJECT_VERSION_MAJOR}.0.0")
list(JOIN symbols "\n" symbols)
file(WRITE ${control}/symbols "${soname} ${package} #MINVER#\n${symbols}\n")
file(WRITE ${control}/shlibs "liborvane ${PROJECT_VERSION_MAJOR} ${package} (>= ${PROJECT_VERSION_MAJOR}.0.0)\n")
file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${control}/symbols ${control}/shlibs ${control}/triggers)

# Each package tells its licence and its changes.
configure_file(cmake/debian/changelog.in ${control}/changelog @ONLY)
execute_process(COMMAND gzip -9nc ${control}/changelog OUTPUT_FILE ${control}/changelog.gz
                COMMAND_ERROR_IS_FATAL ANY)
file(READ LICENSE licence)
string(REGEX REPLACE "^.*(Copyright [^\n]*)\n\n" "" terms "${licence}")
string(REGEX REPLACE "Copyright \\(c\\) " "" holder "${CMAKE_MATCH_1}")
string(REPLACE "\n\n" "\n.\n" terms "${terms}")
string(REGEX REPLACE "\n(.)" "\n \\1" terms "\n${terms}")
file(CONFIGURE OUTPUT ${control}/copyright @ONLY CONTENT [[
Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: Orvane

Files: *
Copyright: @holder@
License: Expat@terms@]])
# The site's scripts, in the version that made its index, are read from any copy of its folder.
if(TARGET site)
  file(WRITE ${control}/overrides "orvane: embedded-javascript-library please use sphinx *\n")
  install(FILES ${control}/overrides COMPONENT debian_program DESTINATION share/lintian/overrides
          RENAME orvane EXCLUDE_FROM_ALL)
endif()
foreach(component library development program simulators)
  string(TOUPPER debian_${component} upper)
  install(FILES ${control}/changelog.gz ${control}/copyright COMPONENT debian_${component}
          DESTINATION share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME} EXCLUDE_FROM_ALL)
endforeach()
