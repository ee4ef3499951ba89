# Some documents in docs/, and all of bindings/, are printed from the code. A test compares each with what would be
# printed now; the target "documents" renews them.

set(printed ${PROJECT_BINARY_DIR}/documents)
file(MAKE_DIRECTORY ${printed})

# velk_printed(FILE FOLDER GENERATOR [ARGUMENT...]): FOLDER/FILE, printed by that program.
function(velk_printed file folder generator)
  add_custom_command(OUTPUT ${printed}/${file}
                     COMMAND ${generator} ${ARGN} > ${printed}/${file}
                     DEPENDS ${generator} ${ARGN})
  add_custom_target(printed_${file} DEPENDS ${printed}/${file})
  add_dependencies(printed_documents printed_${file})
  add_custom_target(renewed_${file} COMMAND ${CMAKE_COMMAND} -E copy ${printed}/${file} ${PROJECT_SOURCE_DIR}/${folder}
                    DEPENDS ${printed}/${file})
  add_dependencies(documents renewed_${file})
  if(BUILD_TESTING)
    add_test(NAME ${file}_is_current
             COMMAND ${CMAKE_COMMAND} -E compare_files --ignore-eol ${printed}/${file}
                     ${PROJECT_SOURCE_DIR}/${folder}/${file})
  endif()
endfunction()

add_custom_target(printed_documents ALL)
add_custom_target(documents)
foreach(name reference results memory_map declarations)
  add_executable(generate_${name} src/printers/generate_${name}.cpp src/printers/docstrings.cpp)
  target_link_libraries(generate_${name} PRIVATE velk_component velk_memory)
  target_compile_options(generate_${name} PRIVATE -O0) # runs once
endforeach()

set(headers ${PROJECT_SOURCE_DIR}/src/link/settings.h ${PROJECT_SOURCE_DIR}/src/component/serial.h)
velk_printed(reference.md docs generate_reference ${headers})
velk_printed(results.md docs generate_results)
velk_printed(memory-map.md docs generate_memory_map)
foreach(file VelkCom.cs VelkCom_TLB.pas velkcom.h)
  velk_printed(${file} bindings generate_declarations ${PROJECT_SOURCE_DIR}/src/printers/templates/${file} ${headers}
               ${PROJECT_SOURCE_DIR}/src/values/result.h)
endforeach()
