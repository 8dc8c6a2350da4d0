# Writes the page of all messages anew and compares it with the committed one.
execute_process(COMMAND ${catalogue} OUTPUT_FILE ${written} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND diff -u ${committed} ${written} RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "docs/messages.md is stale; write it anew with mesh-l2vpn-catalogue")
endif()
