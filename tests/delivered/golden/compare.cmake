# Writes the golden files anew and compares them with the committed ones.
file(REMOVE_RECURSE ${written})
file(MAKE_DIRECTORY ${written})
execute_process(COMMAND ${write_golden} ${written} COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND diff -u -r -x *.cpp -x *.hpp -x CMakeLists.txt -x *.cmake ${committed} ${written}
  RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "golden files are stale; write them anew with write_golden")
endif()
