# mesh_l2vpn::middleware: what a program that sends or receives links beside the library. Read by
# this project itself, and, installed, by the package.
#
# In this order: MESH_L2VPN_MIDDLEWARE (the path of a libzarnimesh, or a target), the workstation's.

if(TARGET mesh_l2vpn::middleware)
  return()
endif()

set(mesh_l2vpn_middleware_source "")
if(MESH_L2VPN_MIDDLEWARE)
  set(mesh_l2vpn_middleware_source "${MESH_L2VPN_MIDDLEWARE}")
elseif(TARGET zarnimesh)
  set(mesh_l2vpn_middleware_source zarnimesh)
elseif(DEFINED mesh_l2vpn_DIR)
  find_package(mesh_l2vpn_workstation CONFIG QUIET HINTS "${mesh_l2vpn_DIR}/..")
  if(TARGET mesh_l2vpn_workstation::zarnimesh)
    set(mesh_l2vpn_middleware_source mesh_l2vpn_workstation::zarnimesh)
  endif()
endif()

if(NOT mesh_l2vpn_middleware_source STREQUAL "")
  if(NOT TARGET "${mesh_l2vpn_middleware_source}" AND NOT EXISTS "${mesh_l2vpn_middleware_source}")
    message(FATAL_ERROR "mesh_l2vpn: MESH_L2VPN_MIDDLEWARE is neither a file nor a target: "
                        "${mesh_l2vpn_middleware_source}")
  endif()
  # Within this project's build it must be seen by the projects around it.
  set(mesh_l2vpn_scope "")
  if(TARGET mesh_l2vpn_objects)
    set(mesh_l2vpn_scope GLOBAL)
  endif()
  add_library(mesh_l2vpn::middleware INTERFACE IMPORTED ${mesh_l2vpn_scope})
  target_link_libraries(mesh_l2vpn::middleware INTERFACE "${mesh_l2vpn_middleware_source}")
elseif(TARGET mesh_l2vpn_objects AND NOT PROJECT_IS_TOP_LEVEL)
  message(STATUS "mesh_l2vpn: packs and unpacks as it is. To send or receive, set "
                 "MESH_L2VPN_MIDDLEWARE to a libzarnimesh (path or target), or "
                 "MESH_L2VPN_WORKSTATION for the workstation's, and link mesh_l2vpn::middleware")
endif()
