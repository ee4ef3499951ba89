# docs/reference.md and docs/results.md are printed from the code. A test compares them with what would be
# printed now; the target "documents" renews them.

add_executable(generate_reference src/component/idl/generate_reference.cpp src/component/idl/docstrings.cpp)
target_link_libraries(generate_reference PRIVATE velk_component)
add_executable(generate_results src/component/idl/generate_results.cpp)
target_link_libraries(generate_results PRIVATE velk_component)

set(printed ${PROJECT_BINARY_DIR}/documents)
file(MAKE_DIRECTORY ${printed})
set(headers ${PROJECT_SOURCE_DIR}/src/link/settings.h ${PROJECT_SOURCE_DIR}/src/component/serial.h)
add_custom_command(
  OUTPUT ${printed}/reference.md
  COMMAND generate_reference ${headers} > ${printed}/reference.md
  DEPENDS generate_reference ${headers})
add_custom_command(
  OUTPUT ${printed}/results.md
  COMMAND generate_results > ${printed}/results.md
  DEPENDS generate_results)
add_custom_target(printed_documents ALL DEPENDS ${printed}/reference.md ${printed}/results.md)
add_custom_target(
  documents
  COMMAND ${CMAKE_COMMAND} -E copy ${printed}/reference.md ${printed}/results.md ${PROJECT_SOURCE_DIR}/docs
  DEPENDS printed_documents)

if(BUILD_TESTING)
  foreach(document reference results)
    add_test(NAME ${document}_is_current
             COMMAND ${CMAKE_COMMAND} -E compare_files --ignore-eol ${printed}/${document}.md
                     ${PROJECT_SOURCE_DIR}/docs/${document}.md)
  endforeach()
endif()
