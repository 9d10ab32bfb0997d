# Warnings are errors in our own code only; third-party headers come in as SYSTEM.
# No -Wnon-virtual-dtor: interfaces have none by contract; -Wall still warns on a delete
# through a base without one.
function(tarn_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX)
  else()
    target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wshadow -Wold-style-cast
      -Wcast-align -Wunused -Woverloaded-virtual -Wconversion -Wsign-conversion
      -Wnull-dereference -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough
      -Werror)
  endif()
endfunction()
