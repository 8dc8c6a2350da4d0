# Installs BUILD (made of SOURCE) into PREFIX component by component, by way of another place: what is
# installed must know neither where it was put first nor where it was made.
file(REMOVE_RECURSE ${PREFIX} ${PREFIX}.first)
foreach(component IN LISTS COMPONENTS)
  execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --component ${component} --strip
                          --prefix ${PREFIX}.first
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(RENAME ${PREFIX}.first ${PREFIX})

# Links from document to document lead to something that is installed too.
file(GLOB_RECURSE documents ${PREFIX}/*.md)
if(NOT documents)
  message(FATAL_ERROR "no documents are installed")
endif()
foreach(document IN LISTS documents)
  cmake_path(GET document PARENT_PATH directory)
  file(READ ${document} text)
  string(REGEX REPLACE "```[^`]*```" "" text "${text}")  # code: a lambda looks like a link
  string(REPLACE "](" "<link to:" text "${text}")  # brackets would join the list's items
  string(REGEX MATCHALL "<link to:[^)#]+" links "${text}")
  list(TRANSFORM links REPLACE "^<link to:" "")
  list(FILTER links EXCLUDE REGEX "^https?:")
  foreach(link IN LISTS links)
    if(NOT EXISTS ${directory}/${link})
      message(FATAL_ERROR "${document} leads to ${link}, which is not installed")
    endif()
  endforeach()
endforeach()

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
