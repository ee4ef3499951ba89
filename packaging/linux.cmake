# What is installed on Linux, and the Debian package made of it: one static library with its headers, a CMake
# package, a pkg-config file, the tools, a manual page and completions.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

add_library(velkcom STATIC)
foreach(part IN LISTS VELKCOM_PARTS)
  target_sources(velkcom PRIVATE $<TARGET_OBJECTS:${part}>)
endforeach()
set_target_properties(velkcom PROPERTIES LINKER_LANGUAGE CXX)
target_compile_features(velkcom INTERFACE cxx_std_20)
target_link_libraries(velkcom INTERFACE Threads::Threads)
add_library(VelkCom::velkcom ALIAS velkcom)

# What a program includes, as <velkcom/serial.h>: these headers stand in one folder there, and include each other so.
set(header_dir ${PROJECT_BINARY_DIR}/include)
foreach(header component/in_out component/result_codes component/serial link/settings modules/identity platform/host
               platform/serial_port platform/socket values/bytes values/result values/runtime_error values/value)
  cmake_path(GET header FILENAME name)
  add_custom_command(
    OUTPUT ${header_dir}/velkcom/${name}.h
    COMMAND sed "s,^#include \".*/\\(.*\\)\",#include <velkcom/\\1>," ${PROJECT_SOURCE_DIR}/src/${header}.h >
            ${header_dir}/velkcom/${name}.h
    DEPENDS src/${header}.h
    VERBATIM)
  list(APPEND public_headers ${header_dir}/velkcom/${name}.h)
endforeach()
add_custom_target(public_headers ALL DEPENDS ${public_headers})
add_dependencies(velkcom public_headers)
target_sources(velkcom PUBLIC FILE_SET HEADERS BASE_DIRS ${header_dir} FILES ${public_headers})
if(BUILD_TESTING) # each header compiles alone, and a program with them alone
  set_target_properties(velkcom PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  add_executable(presets_example examples/linux/presets.cpp)
  target_link_libraries(presets_example PRIVATE VelkCom::velkcom)
  add_dependencies(presets_example velkcom_verify_interface_header_sets)
endif()

# Has FILE of the build folder compressed there.
function(compressed file)
  add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/${file}.gz
    COMMAND gzip -9nc ${PROJECT_BINARY_DIR}/${file} > ${PROJECT_BINARY_DIR}/${file}.gz
    DEPENDS ${PROJECT_BINARY_DIR}/${file})
  add_custom_target(compressed_${file} ALL DEPENDS ${PROJECT_BINARY_DIR}/${file}.gz)
endfunction()

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VelkCom)
configure_package_config_file(packaging/VelkComConfig.cmake.in ${PROJECT_BINARY_DIR}/VelkComConfig.cmake
                              INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelkComConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
# The file finds the rest from where it lies, so that the package works in any root.
file(RELATIVE_PATH PC_UP /usr/${CMAKE_INSTALL_LIBDIR}/pkgconfig /usr)
configure_file(packaging/velkcom.pc.in ${PROJECT_BINARY_DIR}/velkcom.pc @ONLY)

install(TARGETS velkcom EXPORT VelkComTargets FILE_SET HEADERS)
install(EXPORT VelkComTargets NAMESPACE VelkCom:: DESTINATION ${config_dir})
install(FILES ${PROJECT_BINARY_DIR}/VelkComConfig.cmake ${PROJECT_BINARY_DIR}/VelkComConfigVersion.cmake
        DESTINATION ${config_dir})
install(FILES ${PROJECT_BINARY_DIR}/velkcom.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(TARGETS velk velk-sim)
foreach(program velk velk-sim) # their manual pages are what their help says
  add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/${program}.1
    COMMAND ${program} manual > ${PROJECT_BINARY_DIR}/${program}.1
    DEPENDS ${program})
  compressed(${program}.1)
  install(FILES ${PROJECT_BINARY_DIR}/${program}.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
# Each shell finds the completion of a command by the name of a file; that of the Bash and of fish is for one command.
foreach(shell bash zsh fish)
  add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/velk.${shell}
    COMMAND velk completion ${shell} > ${PROJECT_BINARY_DIR}/velk.${shell}
    DEPENDS velk)
  list(APPEND completions ${PROJECT_BINARY_DIR}/velk.${shell})
endforeach()
add_custom_target(completion ALL DEPENDS ${completions})
foreach(program velk velk-sim)
  install(FILES ${PROJECT_BINARY_DIR}/velk.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME ${program})
  install(FILES ${PROJECT_BINARY_DIR}/velk.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
          RENAME ${program}.fish)
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/velk.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions RENAME _velk)
file(GLOB documents CONFIGURE_DEPENDS docs/*.md)
install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${documents} docs/velk.schema.json DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs) # where they lead to each other
install(DIRECTORY docs/images DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY examples/linux packaging/systemd DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velkcom)
set(CPACK_PACKAGE_VENDOR VelkCom)
set(CPACK_PACKAGE_CONTACT "VelkCom maintainers <velkcom@example.org>")
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_PACKAGE_DESCRIPTION
    "velk configures the controller over a serial port or TCP; velk-sim stands\nin for one. The library gives the same to C++ programs.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)

# What Debian wants of each package: the licence in a form to be read by machine, its own kind of change log. Beside
# them the notices of what the tools contain of others.
file(READ LICENSE license)
string(REGEX REPLACE "^.*\n\n(Permission.*)\n$" "\\1" LICENSE_TEXT "${license}")
string(REPLACE "\n\n" "\n.\n" LICENSE_TEXT "${LICENSE_TEXT}")
string(REPLACE "\n" "\n " LICENSE_TEXT "${LICENSE_TEXT}")
string(REPLACE "Copyright (c) " "" COPYRIGHT_HOLDER "${COPYRIGHT}")
configure_file(packaging/copyright.in ${PROJECT_BINARY_DIR}/copyright @ONLY)
string(TIMESTAMP BUILD_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
compressed(changelog)
install(FILES ${PROJECT_BINARY_DIR}/copyright ${PROJECT_BINARY_DIR}/changelog.gz DESTINATION ${CMAKE_INSTALL_DOCDIR})
foreach(package libcli11-dev nlohmann-json3-dev)
  install(FILES /usr/share/doc/${package}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR}/licenses RENAME ${package}
          OPTIONAL)
endforeach()
include(CPack)
