# What makes a fault in a release hard to use for an attack: calls of the C library and of containers
# that check their bounds, guarded return addresses, addresses that change from run to run, tables
# that nothing writes to once the loader is done.
include(CheckCXXCompilerFlag)
if(MSVC)
  return()
endif()
set(release $<CONFIG:Release>)
add_compile_options("$<${release}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
add_compile_definitions($<${release}:_GLIBCXX_ASSERTIONS>)
check_cxx_compiler_flag(-fcf-protection ORVANE_HAS_CF_PROTECTION)
if(ORVANE_HAS_CF_PROTECTION AND NOT WIN32)
  add_compile_options($<${release}:-fcf-protection>)
endif()
if(WIN32)
  # What the guards and the checks call is a library of the compiler's, linked by this option.
  add_link_options($<${release}:-fstack-protector-strong>)
  # Without the time of the link in it a file is the same each time it is made.
  add_link_options(-Wl,--nxcompat,--dynamicbase,--high-entropy-va,--no-insert-timestamp)
else()
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
endif()
