# What a Wayland client needs of the protocols' descriptions.

find_package(PkgConfig REQUIRED)
find_package(PlasmaWaylandProtocols REQUIRED)
pkg_check_modules(WAYLAND_CLIENT REQUIRED IMPORTED_TARGET wayland-client)
pkg_check_modules(WAYLAND_SERVER REQUIRED IMPORTED_TARGET wayland-server)
pkg_get_variable(WAYLAND_SCANNER wayland-scanner wayland_scanner)
pkg_get_variable(WAYLAND_PROTOCOLS_DIR wayland-protocols pkgdatadir)

# wayland_protocols(TARGET file.xml …): both their sides as a static library of generated C, without our warnings. A file
# is included as <file-client-protocol.h>, or as <file-server-protocol.h> by who links wayland-server.
function(wayland_protocols target)
    set(generated)
    foreach(description ${ARGN})
        get_filename_component(name ${description} NAME_WE)
        set(base ${CMAKE_CURRENT_BINARY_DIR}/${target}/${name})
        set(files ${base}-client-protocol.h ${base}-server-protocol.h ${base}-protocol.c)
        add_custom_command(
            OUTPUT ${files}
            COMMAND ${WAYLAND_SCANNER} client-header ${description} ${base}-client-protocol.h
            COMMAND ${WAYLAND_SCANNER} server-header ${description} ${base}-server-protocol.h
            COMMAND ${WAYLAND_SCANNER} private-code ${description} ${base}-protocol.c
            DEPENDS ${description})
        list(APPEND generated ${files})
    endforeach()
    file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${target})
    add_library(${target} STATIC ${generated})
    set_target_properties(${target} PROPERTIES AUTOMOC OFF)
    target_include_directories(${target} SYSTEM PUBLIC ${CMAKE_CURRENT_BINARY_DIR}/${target})
    target_link_libraries(${target} PUBLIC PkgConfig::WAYLAND_CLIENT)
endfunction()
