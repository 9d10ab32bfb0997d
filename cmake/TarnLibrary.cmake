# One library per folder. DEPENDS names the folders whose headers the library includes, each of
# them the target tarn::<folder>; an include of a folder that is not declared stops the
# configuration, so an undeclared dependency never builds. HEADERS_FROM names folders whose
# headers alone are used, never their library (a host reads the module's export types but loads
# the module at run time).
function(tarn_library folder)
  cmake_parse_arguments(ARG "" "TYPE" "SOURCES;DEPENDS;HEADERS_FROM;LIBRARIES" ${ARGN})
  if(NOT ARG_TYPE)
    set(ARG_TYPE STATIC)
  endif()
  set(target tarn_${folder})
  add_library(${target} ${ARG_TYPE} ${ARG_SOURCES})
  add_library(tarn::${folder} ALIAS ${target})
  foreach(dependency IN LISTS ARG_DEPENDS)
    target_link_libraries(${target} PUBLIC tarn::${dependency})
  endforeach()
  if(ARG_LIBRARIES)
    target_link_libraries(${target} PUBLIC ${ARG_LIBRARIES})
  endif()
  tarn_warnings(${target})
  tarn_check_includes(${folder} ${ARG_DEPENDS} ${ARG_HEADERS_FROM})
endfunction()

# Stops the configuration when a file of `folder` includes a project folder other than its own
# and those given after it.
function(tarn_check_includes folder)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/${folder}/*.h ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
  foreach(file IN LISTS files)
    file(STRINGS ${file} includes REGEX "^#include \"[a-z_]+/")
    foreach(include IN LISTS includes)
      string(REGEX REPLACE "^#include \"([a-z_]+)/.*" "\\1" used "${include}")
      if(NOT used STREQUAL folder AND NOT used IN_LIST ARGN)
        message(FATAL_ERROR
          "${file} includes ${used}/, which ${folder}/ does not declare as a dependency")
      endif()
    endforeach()
  endforeach()
endfunction()
