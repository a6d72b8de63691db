# Writes and installs the files that name where the installation is. CMakeLists.txt sets the variables.

# The program looks for the settings in /etc/xdg and, unless it is in /usr, in etc/xdg of its prefix
# (SystemConfigFolders in platform/linux/files).
set(etc "${CMAKE_INSTALL_PREFIX}/etc")
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(etc /etc)
endif()

foreach(program voxmate voxmate-voices acsbuild acsinfo)
    set(ETC "${etc}")
    set(READER "${CMAKE_INSTALL_PREFIX}/libexec/voxmate/voxmate-reader")
    set(DECODER "${CMAKE_INSTALL_PREFIX}/libexec/voxmate/voxmate-decoder")
    set(RECORDER "${CMAKE_INSTALL_PREFIX}/libexec/voxmate/voxmate-recorder")
    configure_file("${SOURCE}/man/${program}.1.in" "${BINARY}/${program}.1" @ONLY)
    file(INSTALL "${BINARY}/${program}.1" DESTINATION "${MAN}")
endforeach()

# By this file the session's bus starts the program. It reads the command as a shell does.
string(REPLACE "\"" "\\\"" BIN "${BIN}")
configure_file("${SOURCE}/desktop/org.voxmate.Voxmate.service.in" "${BINARY}/org.voxmate.Voxmate.service" @ONLY)
file(INSTALL "${BINARY}/org.voxmate.Voxmate.service" DESTINATION "${SERVICES}")

# In the settings file a backslash stands before a quote.
string(REPLACE "\"" "\\\"" SHARE "${SHARE}")
configure_file("${SOURCE}/registry.reg.in" "${BINARY}/registry.reg" @ONLY)
# An administrator may have changed it.
if(EXISTS "$ENV{DESTDIR}${etc}/xdg/voxmate/registry.reg")
    message(STATUS "Kept: ${etc}/xdg/voxmate/registry.reg")
else()
    file(INSTALL "${BINARY}/registry.reg" DESTINATION "${etc}/xdg/voxmate")
endif()
