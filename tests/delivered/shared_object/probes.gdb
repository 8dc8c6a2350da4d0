set breakpoint pending on
set pagination off
break -probe-stap mesh_l2vpn:rejected
commands
  silent
  printf "rejected 0x%08X at %d, slot %d\n", $_probe_arg0, $_probe_arg1, $_probe_arg2
  continue
end
break -probe-stap mesh_l2vpn:send_failed
commands
  silent
  printf "send_failed 0x%08X 0x%08X\n", $_probe_arg0, $_probe_arg1
  continue
end
break -probe-stap mesh_l2vpn:allocation_refused
commands
  silent
  printf "allocation_refused %s %u\n", (char*)$_probe_arg0, $_probe_arg1
  continue
end
break -probe-stap mesh_l2vpn:bound
commands
  silent
  printf "bound %p %s\n", $_probe_arg0, (char*)$_probe_arg1
  continue
end
run
