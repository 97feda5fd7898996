# Warnings for our own targets only; third-party headers come in as system includes.
function(sw_target_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4)
  else()
    # Designated initialisers that leave members at their defaults are intended, not an oversight.
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                                             -Wno-missing-field-initializers)
    # GCC 12 reports impossible std::string copies at -O2/-O3 (its bug 105329); nothing in our code.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
  endif()
endfunction()

# sw_library(<name> SOURCES ... [DEPS ...] [PRIVATE_DEPS ...])
# Defines static library sw_<name> with alias sw::<name>. Its public headers are included as
# "<name>/header.h" relative to src/, so a layer can only see what it links.
function(sw_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;PRIVATE_DEPS" ${ARGN})
  add_library(sw_${name} STATIC ${ARG_SOURCES})
  add_library(sw::${name} ALIAS sw_${name})
  target_include_directories(sw_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
  target_link_libraries(sw_${name} PUBLIC ${ARG_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
  sw_target_warnings(sw_${name})
endfunction()
