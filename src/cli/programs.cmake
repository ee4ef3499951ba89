# The programs. CLI11 and nlohmann-json are header-only; a cross build reaches the system's copies through links,
# since the rest of /usr/include must stay out of its sight.
if(CMAKE_CROSSCOMPILING)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)
  foreach(library CLI nlohmann)
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
