# libmesh_l2vpn: its objects, and the shared object made of them. Tests link the same objects, so
# that what the shared object hides is tested all the same.

set(mesh_l2vpn_includes
  ${CMAKE_CURRENT_SOURCE_DIR}/include
  ${CMAKE_CURRENT_SOURCE_DIR}/msg/include
  ${CMAKE_CURRENT_SOURCE_DIR}/l2vpn_cfg/include
  ${CMAKE_CURRENT_SOURCE_DIR}/l2vpn_stat/include
  ${CMAKE_CURRENT_SOURCE_DIR}/l2vpn_sync/include)

set(mesh_l2vpn_public_headers
  ${CMAKE_CURRENT_SOURCE_DIR}/include/mesh_l2vpn/handlers.hpp
  ${CMAKE_CURRENT_SOURCE_DIR}/include/mesh_l2vpn/messages.h
  ${CMAKE_CURRENT_SOURCE_DIR}/include/mesh_l2vpn/messages.hpp
  ${CMAKE_CURRENT_SOURCE_DIR}/msg/include/mesh_l2vpn/operations.h)
foreach(service l2vpn_cfg l2vpn_stat l2vpn_sync)
  list(APPEND mesh_l2vpn_public_headers
    ${CMAKE_CURRENT_SOURCE_DIR}/${service}/include/mesh_l2vpn/${service}.h
    ${CMAKE_CURRENT_SOURCE_DIR}/${service}/include/mesh_l2vpn/${service}_functions.h)
endforeach()

add_library(mesh_l2vpn_objects OBJECT
  host/log.cpp
  host/proof.cpp
  wire/slow_writer.cpp
  l2vpn_cfg/proof.cpp
  l2vpn_cfg/receive.cpp
  l2vpn_cfg/send.cpp
  l2vpn_stat/proof.cpp
  l2vpn_stat/receive.cpp
  l2vpn_stat/send.cpp
  l2vpn_sync/proof.cpp
  l2vpn_sync/receive.cpp
  l2vpn_sync/send.cpp)
target_include_directories(mesh_l2vpn_objects PUBLIC
  ${CMAKE_CURRENT_SOURCE_DIR} ${mesh_l2vpn_includes})
target_compile_features(mesh_l2vpn_objects PUBLIC cxx_std_20)
set_target_properties(mesh_l2vpn_objects PROPERTIES
  CXX_EXTENSIONS OFF
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON
  POSITION_INDEPENDENT_CODE ON)
# Identical operations keep addresses of their own (hosts compare the registered functions), and the
# library can be unloaded. Without copies for constant arguments, cold functions exist once.
target_compile_options(mesh_l2vpn_objects PRIVATE
  -fno-exceptions -fno-rtti -fno-threadsafe-statics $<$<CONFIG:Release>:-O2>
  $<$<CXX_COMPILER_ID:GNU>:-fno-ipa-icf -fno-gnu-unique -fno-ipa-cp -fno-ipa-sra>
  # An operation that its service's header does not declare would be hidden.
  $<$<CXX_COMPILER_ID:GNU>:-Wmissing-declarations>
  $<$<BOOL:${MESH_L2VPN_DEVELOPER}>:-g>)
mesh_l2vpn_warnings(mesh_l2vpn_objects)

# The version script names what the list of messages names, and nothing else.
set(mesh_l2vpn_exports ${CMAKE_CURRENT_BINARY_DIR}/mesh_l2vpn.map)
list(TRANSFORM mesh_l2vpn_includes PREPEND -I OUTPUT_VARIABLE mesh_l2vpn_include_flags)
add_custom_command(
  OUTPUT ${mesh_l2vpn_exports}
  COMMAND ${CMAKE_C_COMPILER} -E -P -x c ${mesh_l2vpn_include_flags}
          -imacros mesh_l2vpn/messages.h ${CMAKE_CURRENT_SOURCE_DIR}/cmake/mesh_l2vpn.map.in -o ${mesh_l2vpn_exports}
  DEPENDS cmake/mesh_l2vpn.map.in ${mesh_l2vpn_public_headers}
  VERBATIM)
add_custom_target(mesh_l2vpn_exports DEPENDS ${mesh_l2vpn_exports})

add_library(mesh_l2vpn SHARED)
add_library(mesh_l2vpn::mesh_l2vpn ALIAS mesh_l2vpn)
add_dependencies(mesh_l2vpn mesh_l2vpn_exports)
target_link_libraries(mesh_l2vpn PRIVATE mesh_l2vpn_objects ${CMAKE_DL_LIBS})
target_include_directories(mesh_l2vpn INTERFACE "$<BUILD_INTERFACE:${mesh_l2vpn_includes}>")
set_target_properties(mesh_l2vpn PROPERTIES
  LINKER_LANGUAGE C
  VERSION ${MESH_L2VPN_ABI}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH}
  SOVERSION ${MESH_L2VPN_ABI}
  LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}
  LINK_DEPENDS ${mesh_l2vpn_exports})
# Bound lazily: a process that never sends needs no middleware. The library's own calls of what it
# exports are direct, and nobody overrides them. The functions that it registers keep the addresses by
# which the process knows them: hosts compare these.
target_link_options(mesh_l2vpn PRIVATE
  LINKER:--version-script=${mesh_l2vpn_exports} LINKER:-Bsymbolic-functions
  LINKER:--dynamic-list=${CMAKE_CURRENT_SOURCE_DIR}/cmake/registered.list
  LINKER:-z,lazy LINKER:-z,relro LINKER:--as-needed)
if(MESH_L2VPN_MIDDLEWARE)
  target_link_libraries(mesh_l2vpn PRIVATE ${MESH_L2VPN_MIDDLEWARE})
else()
  target_link_options(mesh_l2vpn INTERFACE LINKER:--allow-shlib-undefined)
endif()

# The same objects as an archive. A module's constructor lies in the object that holds its
# operations, so it runs wherever one of them is linked.
if(MESH_L2VPN_STATIC)
  add_library(mesh_l2vpn_static STATIC $<TARGET_OBJECTS:mesh_l2vpn_objects>)
  add_library(mesh_l2vpn::mesh_l2vpn_static ALIAS mesh_l2vpn_static)
  set_target_properties(mesh_l2vpn_static PROPERTIES
    LINKER_LANGUAGE C OUTPUT_NAME mesh_l2vpn ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  target_include_directories(mesh_l2vpn_static INTERFACE "$<BUILD_INTERFACE:${mesh_l2vpn_includes}>")
  target_link_libraries(mesh_l2vpn_static INTERFACE ${CMAKE_DL_LIBS})

  # A program cannot leave functions open as a shared object can: where it has no middleware, this
  # closes them.
  add_library(mesh_l2vpn_without_middleware STATIC msg/without_middleware.c)
  add_library(mesh_l2vpn::without_middleware ALIAS mesh_l2vpn_without_middleware)
  set_target_properties(mesh_l2vpn_without_middleware PROPERTIES
    C_STANDARD 99 EXPORT_NAME without_middleware POSITION_INDEPENDENT_CODE ON
    ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  mesh_l2vpn_warnings(mesh_l2vpn_without_middleware)
endif()
