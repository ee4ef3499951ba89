# The programs. CLI11, nlohmann-json and what is used of Boost are header-only; a cross build reaches the system's copies through links,
# since the rest of /usr/include must stay out of its sight.
if(CMAKE_CROSSCOMPILING)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)
  foreach(library CLI nlohmann boost)
    file(CREATE_LINK /usr/include/${library} ${PROJECT_BINARY_DIR}/include/${library} SYMBOLIC)
  endforeach()
endif()
target_include_directories(velk_cli_shared SYSTEM PUBLIC
                           $<$<BOOL:${CMAKE_CROSSCOMPILING}>:${PROJECT_BINARY_DIR}/include>)
target_link_libraries(velk_cli_shared PUBLIC Threads::Threads "$<$<BOOL:${WIN32}>:setupapi;ws2_32;ole32;oleaut32;shell32;uuid>")
# The library behind it takes a compiler twice as long when it optimises, and velk three times as long to start when it
# does not.
set_property(SOURCE src/cli/shared/command_line.cpp APPEND PROPERTY COMPILE_OPTIONS $<IF:$<CONFIG:Debug>,-O0,-O1>)
set_property(SOURCE src/cli/shared/json.cpp PROPERTY SKIP_UNITY_BUILD_INCLUSION ON)

target_include_directories(velk_cli_sim PUBLIC src/cli/sim/${PLATFORM})
# Boost's headers are its own business.
set_source_files_properties(src/cli/sim/web/http.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON
                            COMPILE_OPTIONS "-Wno-zero-as-null-pointer-constant")
target_link_libraries(velk_cli_sim PUBLIC $<$<BOOL:${WIN32}>:mswsock>)

# The page for a browser becomes one text in the program.
set(page ${PROJECT_SOURCE_DIR}/src/cli/sim/web/page)
foreach(part html css js)
  file(READ ${page}/page.${part} PAGE_${part})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${page}/page.${part})
endforeach()
foreach(part css js) # one may hold what stands for another
  string(REPLACE "/*page.${part}*/" "${PAGE_${part}}" PAGE_html "${PAGE_html}")
endforeach()
file(CONFIGURE OUTPUT page.cpp CONTENT "#include \"cli/sim/web/page_site.h\"

namespace velk::cli::web {

std::string_view pageText() {
  return R\"page(@PAGE_html@)page\";
}

}  // namespace velk::cli::web
" @ONLY)
target_sources(velk_cli_sim PRIVATE ${PROJECT_BINARY_DIR}/page.cpp)
set_source_files_properties(${PROJECT_BINARY_DIR}/page.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
set_source_files_properties(src/cli/sim/web/page_site.cpp PROPERTIES COMPILE_DEFINITIONS VELK_VERSION="${PROJECT_VERSION}")
# Too much for one compilation: each room by itself.
foreach(room backup commands completion connection doctor report shell things trace)
  file(GLOB_RECURSE together src/cli/velk/${room}/*.cpp)
  set_property(SOURCE ${together} PROPERTY UNITY_GROUP ${room})
endforeach()
set_target_properties(velk_cli_velk PROPERTIES UNITY_BUILD_MODE GROUP)

if(NOT WIN32)
  target_link_libraries(velk_cli_velk PRIVATE edit)
endif()

foreach(program velk sim)
  set_property(SOURCE src/cli/${program}/main.cpp APPEND PROPERTY COMPILE_DEFINITIONS VELK_VERSION="${PROJECT_VERSION}")
endforeach()
set_property(SOURCE src/cli/velk/doctor/windows/self_check.cpp src/cli/velk/doctor/windows/hosts.cpp
             APPEND PROPERTY COMPILE_DEFINITIONS VELK_VERSION="${PROJECT_VERSION}")
add_executable(velk src/cli/velk/main.cpp)
target_link_libraries(velk PRIVATE velk_cli_velk)
add_executable(velk-sim src/cli/sim/main.cpp)
target_link_libraries(velk-sim PRIVATE velk_cli_sim)
if(WIN32) # a part of the setup program, which opens no console
  add_executable(setup-path WIN32 src/cli/path/main.cpp)
  target_link_libraries(setup-path PRIVATE velk_cli_path shell32)
endif()
