# Generates a page and compares it with the committed one.
separate_arguments(arguments)
execute_process(COMMAND ${catalogue} ${arguments} OUTPUT_FILE ${written} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND diff -u ${committed} ${written} RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "${committed} is outdated. ${advice}")
endif()
