# The component as hosts load it: VelkCom.dll with its type library.

target_link_libraries(velk_platform PUBLIC ws2_32)
target_link_libraries(velk_com PUBLIC ole32 oleaut32 uuid advapi32 user32)

# The interface definition is printed by a tool that runs on the machine that builds.
find_program(BUILD_CXX NAMES c++ g++ clang++ REQUIRED NO_CMAKE_FIND_ROOT_PATH)
set(IDL_DIR ${PROJECT_BINARY_DIR}/idl)
file(MAKE_DIRECTORY ${IDL_DIR})
add_custom_command(
  OUTPUT ${IDL_DIR}/generate_idl
  COMMAND ${BUILD_CXX} -std=c++20 -I ${PROJECT_SOURCE_DIR}/src -MD -MF ${IDL_DIR}/generate_idl.d
          -MT idl/generate_idl -o ${IDL_DIR}/generate_idl
          ${PROJECT_SOURCE_DIR}/src/printers/generate_idl.cpp
  DEPENDS ${PROJECT_SOURCE_DIR}/src/printers/generate_idl.cpp
  DEPFILE ${IDL_DIR}/generate_idl.d
  VERBATIM)
add_custom_command(
  OUTPUT ${IDL_DIR}/velkcom.idl
  COMMAND ${IDL_DIR}/generate_idl > ${IDL_DIR}/velkcom.idl
  DEPENDS ${IDL_DIR}/generate_idl)
add_custom_command(
  OUTPUT ${IDL_DIR}/velkcom.tlb
  COMMAND ${MINGW_WIDL} -t -o ${IDL_DIR}/velkcom.tlb ${IDL_DIR}/velkcom.idl
  DEPENDS ${IDL_DIR}/velkcom.idl
  VERBATIM)

# The manifest has names and identifiers from where the code has them.
set(IDENTITY src/component/identity.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${IDENTITY})
file(STRINGS ${IDENTITY} identity_lines REGEX "^constexpr std::string_view ")
foreach(line IN LISTS identity_lines)
  string(REGEX MATCH "string_view ([A-Za-z]+) = \"(.*)\";" _ "${line}")
  set(${CMAKE_MATCH_1} "${CMAKE_MATCH_2}")
endforeach()
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(ARCHITECTURE amd64)
else()
  set(ARCHITECTURE x86)
endif()
configure_file(src/com/VelkCom.manifest.in ${IDL_DIR}/VelkCom.manifest @ONLY)

configure_file(src/com/velkcom.rc.in ${IDL_DIR}/velkcom.rc @ONLY)
set_source_files_properties(${IDL_DIR}/velkcom.rc PROPERTIES
  OBJECT_DEPENDS "${IDL_DIR}/velkcom.tlb;${IDL_DIR}/VelkCom.manifest")

add_library(VelkCom SHARED $<TARGET_OBJECTS:velk_com> ${IDL_DIR}/velkcom.rc
                           src/com/VelkCom.def)
set_target_properties(VelkCom PROPERTIES PREFIX "" LINKER_LANGUAGE CXX)
get_target_property(com_libraries velk_com LINK_LIBRARIES)
# The names in VelkCom.def are those that the system asks for, without the marks of the calling convention.
target_link_options(VelkCom PRIVATE -Wl,--enable-stdcall-fixup -s)
target_include_directories(VelkCom PRIVATE ${IDL_DIR})
target_link_libraries(VelkCom PRIVATE ${com_libraries})

if(BUILD_TESTING)
  add_subdirectory(tests/hosts)
  add_subdirectory(tests/platform/windows)
endif()
