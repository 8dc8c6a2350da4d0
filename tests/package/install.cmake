# Installs BUILD (made of SOURCE) into PREFIX component by component, by way of another place: what is
# installed must know neither where it was put first nor where it was made.
file(REMOVE_RECURSE ${PREFIX} ${PREFIX}.first)
foreach(component IN LISTS COMPONENTS)
  execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --component ${component} --strip
                          --prefix ${PREFIX}.first
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(RENAME ${PREFIX}.first ${PREFIX})

file(GLOB_RECURSE installed ${PREFIX}/*)
# Archives cannot be stripped, and debug information names sources.
list(FILTER installed EXCLUDE REGEX "\\.a$")
foreach(file IN LISTS installed)
  foreach(place ${PREFIX}.first ${BUILD} ${SOURCE})
    file(STRINGS ${file} lines REGEX "${place}/" LIMIT_COUNT 1)
    if(lines)
      message(FATAL_ERROR "${file} names ${place}: ${lines}")
    endif()
  endforeach()
endforeach()
