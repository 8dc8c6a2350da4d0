# Debian packages, one for each install component; tools/make-packages.sh makes and checks them.
#
#   libmesh-l2vpn1           runtime
#   libmesh-l2vpn-inspect1   inspect
#   libmesh-l2vpn-dev        development
#   mesh-l2vpn-workstation   workstation
#   mesh-l2vpn-tools         tools
#   python3-mesh-l2vpn       python
#
# Configure with -DCMAKE_INSTALL_PREFIX=/usr, so that files go where Debian has them.
set(MESH_L2VPN_MAINTAINER "mesh_l2vpn maintainers <maintainers@mesh-l2vpn.invalid>" CACHE STRING
    "Who answers for the packages: name <address>")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME mesh-l2vpn)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # every package has its own
set(CPACK_PACKAGE_CONTACT "${MESH_L2VPN_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(this_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(inspect_package "")
if(TARGET mesh_l2vpn_inspect)
  list(APPEND CPACK_COMPONENTS_ALL inspect)
  set(inspect_package ", libmesh-l2vpn-inspect${MESH_L2VPN_INSPECT_ABI} ${this_version}")
endif()
if(TARGET zarnimesh)
  list(APPEND CPACK_COMPONENTS_ALL workstation)
endif()
if(TARGET mesh_l2vpn_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

# The package of a component: its section, what it depends on, its description.
macro(mesh_l2vpn_deb component package section depends summary)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  string(JOIN "\n" CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}" ${ARGN})
  install(FILES packaging/copyright
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_BINARY_DIR}/package/changelog.gz RENAME changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

mesh_l2vpn_deb(runtime libmesh-l2vpn${MESH_L2VPN_ABI} libs ""
  "typed messages of the Layer-2 VPN feature"
  "Packs, sends, verifies and unpacks the records that the processes of the"
  "Layer-2 VPN feature tell each other. The messaging middleware is the"
  "process's own.")
mesh_l2vpn_deb(development libmesh-l2vpn-dev libdevel
  "libmesh-l2vpn${MESH_L2VPN_ABI} ${this_version}${inspect_package}, libc6-dev"
  "typed messages of the Layer-2 VPN feature, development files"
  "Headers, static library, CMake package, pkg-config files and the reference"
  "of all messages.")
mesh_l2vpn_deb(inspect libmesh-l2vpn-inspect${MESH_L2VPN_INSPECT_ABI} libs ""
  "verdicts, JSON and explanations of Layer-2 VPN messages"
  "Tells of any message's bytes whether receivers take them and why not, shows"
  "their record as JSON and explains every byte. Needs neither the library of"
  "the messages nor a middleware.")
mesh_l2vpn_deb(workstation mesh-l2vpn-workstation libdevel ""
  "middleware and host services that let a workstation play the device"
  "A libzarnimesh over ZeroMQ and a libddmosal, with their headers, to develop"
  "and test programs that send and receive Layer-2 VPN messages, and"
  "zarnimesh-keys, which makes the keys that nodes on different machines need.")
mesh_l2vpn_deb(tools mesh-l2vpn-tools utils ""
  "tools around the messages of the Layer-2 VPN feature"
  "mesh-l2vpn decodes, encodes, explains, sends and records messages;"
  "mesh-l2vpn-catalogue lists every message with its fields, sizes and"
  "fingerprint.")
mesh_l2vpn_deb(python python3-mesh-l2vpn python
  "python3 (>= 3.9)${inspect_package}"
  "messages of the Layer-2 VPN feature from Python"
  "Packs, unpacks, verifies and explains Layer-2 VPN messages, one by one and"
  "as numpy arrays, with stubs for editors and type checkers. Reads and writes"
  "captures. With mesh-l2vpn-workstation it sends and receives messages, and"
  "has a fixture for tests with pytest.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-numpy)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS mesh-l2vpn-workstation)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/package/shlibs ${PROJECT_BINARY_DIR}/package/triggers)
file(WRITE ${PROJECT_BINARY_DIR}/package/shlibs
  "libmesh_l2vpn ${MESH_L2VPN_ABI} libmesh-l2vpn${MESH_L2VPN_ABI} (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_INSPECT_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/package/inspect/shlibs ${PROJECT_BINARY_DIR}/package/triggers)
file(WRITE ${PROJECT_BINARY_DIR}/package/inspect/shlibs "libmesh_l2vpn_inspect ${MESH_L2VPN_INSPECT_ABI} "
  "libmesh-l2vpn-inspect${MESH_L2VPN_INSPECT_ABI} (>= ${PROJECT_VERSION})\n")
file(WRITE ${PROJECT_BINARY_DIR}/package/triggers "activate-noawait ldconfig\n")

# The date is that of the sources, where git knows it, so that packages can be made again.
execute_process(COMMAND git log -1 --format=%cD WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
  OUTPUT_VARIABLE mesh_l2vpn_changelog_date OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT mesh_l2vpn_changelog_date)
  set(mesh_l2vpn_changelog_date "Thu, 01 Jan 1970 00:00:00 +0000")
endif()
configure_file(packaging/changelog.in ${PROJECT_BINARY_DIR}/package/changelog @ONLY)
execute_process(COMMAND gzip -9nkf ${PROJECT_BINARY_DIR}/package/changelog COMMAND_ERROR_IS_FATAL ANY)

function(mesh_l2vpn_manual program component)
  configure_file(packaging/${program}.1 ${PROJECT_BINARY_DIR}/package COPYONLY)
  execute_process(COMMAND gzip -9nkf ${PROJECT_BINARY_DIR}/package/${program}.1 COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${PROJECT_BINARY_DIR}/package/${program}.1.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
endfunction()
mesh_l2vpn_manual(mesh-l2vpn-catalogue tools)
if(TARGET mesh-l2vpn)
  mesh_l2vpn_manual(mesh-l2vpn tools)
endif()
if(TARGET zarnimesh)
  mesh_l2vpn_manual(zarnimesh-keys workstation)
endif()

include(CPack)
