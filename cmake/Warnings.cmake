# What a target of this project is compiled with, beyond what it needs to be.
function(mesh_l2vpn_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnull-dereference
    $<$<BOOL:${MESH_L2VPN_DEVELOPER}>:-Werror>)
endfunction()
