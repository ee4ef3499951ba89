# Some documents in docs/ are printed from the code. A test compares each with what would be printed now; the target
# "documents" renews them.

set(printed ${PROJECT_BINARY_DIR}/documents)
file(MAKE_DIRECTORY ${printed})

# velk_document(name file... [ARGUMENTS ...]): docs/name.md, printed by generate_name, which these files make.
function(velk_document name)
  cmake_parse_arguments(ARG "" "" "ARGUMENTS" ${ARGN})
  list(TRANSFORM ARG_UNPARSED_ARGUMENTS PREPEND src/printers/)
  add_executable(generate_${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(generate_${name} PRIVATE velk_component velk_memory)
  target_compile_options(generate_${name} PRIVATE -O0) # runs once
  string(REPLACE _ - document ${name})
  add_custom_command(OUTPUT ${printed}/${document}.md
                     COMMAND generate_${name} ${ARG_ARGUMENTS} > ${printed}/${document}.md
                     DEPENDS generate_${name} ${ARG_ARGUMENTS})
  set_property(GLOBAL APPEND PROPERTY velk_documents ${printed}/${document}.md)
  if(BUILD_TESTING)
    add_test(NAME ${document}_is_current
             COMMAND ${CMAKE_COMMAND} -E compare_files --ignore-eol ${printed}/${document}.md
                     ${PROJECT_SOURCE_DIR}/docs/${document}.md)
  endif()
endfunction()

velk_document(reference generate_reference.cpp docstrings.cpp ARGUMENTS ${PROJECT_SOURCE_DIR}/src/link/settings.h
              ${PROJECT_SOURCE_DIR}/src/component/serial.h)
velk_document(results generate_results.cpp)
velk_document(memory_map generate_memory_map.cpp)

get_property(documents GLOBAL PROPERTY velk_documents)
add_custom_target(printed_documents ALL DEPENDS ${documents})
add_custom_target(documents COMMAND ${CMAKE_COMMAND} -E copy ${documents} ${PROJECT_SOURCE_DIR}/docs
                  DEPENDS printed_documents)
