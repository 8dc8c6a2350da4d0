# What is installed, by component:
#
#   runtime       the shared object
#   inspect       the shared object of libmesh_l2vpn_inspect
#   development   headers, static library, CMake package, pkg-config files, reference pages; needs the
#                 two above
#   workstation   the workstation's middleware and host services, with headers and package files, and
#                 the program that makes its keys
#   tools         the programs
#   python        the Python package; needs inspect
#
# Everything finds everything else by relative paths, so an installed tree may be moved.
include(CMakePackageConfigHelpers)

set(mesh_l2vpn_cmakedir ${CMAKE_INSTALL_LIBDIR}/cmake/mesh_l2vpn)
set(mesh_l2vpn_pkgconfigdir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH mesh_l2vpn_prefix_from_pc /prefix/${mesh_l2vpn_pkgconfigdir} /prefix)
string(REGEX REPLACE "/$" "" mesh_l2vpn_prefix_from_pc "${mesh_l2vpn_prefix_from_pc}")

set(mesh_l2vpn_exported mesh_l2vpn)
if(MESH_L2VPN_STATIC)
  list(APPEND mesh_l2vpn_exported mesh_l2vpn_static mesh_l2vpn_without_middleware)
endif()
install(TARGETS ${mesh_l2vpn_exported} EXPORT mesh_l2vpn_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET mesh_l2vpn_inspect)
  install(TARGETS mesh_l2vpn_inspect EXPORT mesh_l2vpn_targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT inspect NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(FILES ${mesh_l2vpn_inspect_header} inspect/include/mesh_l2vpn/inspect.hpp
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mesh_l2vpn COMPONENT development)
  configure_file(cmake/mesh_l2vpn_inspect.pc.in
    ${PROJECT_BINARY_DIR}/package/mesh_l2vpn_inspect.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/mesh_l2vpn_inspect.pc
    DESTINATION ${mesh_l2vpn_pkgconfigdir} COMPONENT development)
endif()
install(EXPORT mesh_l2vpn_targets NAMESPACE mesh_l2vpn:: FILE mesh_l2vpnTargets.cmake
  DESTINATION ${mesh_l2vpn_cmakedir} COMPONENT development)
install(FILES ${mesh_l2vpn_public_headers}
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mesh_l2vpn COMPONENT development)

# The package files of `package`, from its templates, into a directory of its own.
function(mesh_l2vpn_install_package package component)
  configure_package_config_file(cmake/${package}Config.cmake.in
    ${PROJECT_BINARY_DIR}/package/${package}Config.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/${package})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/${package}ConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  configure_file(cmake/${package}.pc.in ${PROJECT_BINARY_DIR}/package/${package}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/${package}Config.cmake
                ${PROJECT_BINARY_DIR}/package/${package}ConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/${package} COMPONENT ${component})
  install(FILES ${PROJECT_BINARY_DIR}/package/${package}.pc
    DESTINATION ${mesh_l2vpn_pkgconfigdir} COMPONENT ${component})
endfunction()

mesh_l2vpn_install_package(mesh_l2vpn development)
install(FILES cmake/Middleware.cmake DESTINATION ${mesh_l2vpn_cmakedir}
  COMPONENT development RENAME mesh_l2vpnMiddleware.cmake)
# Documents lie to one another as they do here, so that their links hold.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
  PATTERN "Doxyfile" EXCLUDE PATTERN "pull_request_template.md" EXCLUDE)
# A component of its own: Debian's packages carry packaging/copyright instead.
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT license)
foreach(room platform fuzz)
  install(FILES ${room}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/${room} COMPONENT development)
endforeach()

if(TARGET zarnimesh)
  # In directories of their own, so that they never stand before a device's libraries and headers.
  install(TARGETS zarnimesh ddmosal platform_interfaces EXPORT mesh_l2vpn_workstation_targets
    LIBRARY DESTINATION ${mesh_l2vpn_workstation_libdir} COMPONENT workstation
    INCLUDES DESTINATION ${mesh_l2vpn_workstation_includedir})
  install(TARGETS zarnimesh_keys
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT workstation)
  install(EXPORT mesh_l2vpn_workstation_targets NAMESPACE mesh_l2vpn_workstation::
    FILE mesh_l2vpn_workstationTargets.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/mesh_l2vpn_workstation COMPONENT workstation)
  install(DIRECTORY platform/include/ platform/workstation/include/
    DESTINATION ${mesh_l2vpn_workstation_includedir} COMPONENT workstation)
  mesh_l2vpn_install_package(mesh_l2vpn_workstation workstation)
endif()

if(MESH_L2VPN_TOOLS)
  install(TARGETS mesh-l2vpn-catalogue RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  if(TARGET mesh-l2vpn)
    install(TARGETS mesh-l2vpn RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  endif()
endif()
