# corvane_room(NAME [USES ALL | ROOM...] [LINK TARGET...] [PRIVATE TARGET...])
#
# A room: a static library of everything under Sources/Corvane/NAME and, if tests are built, a test program of
# everything under Tests/NAME. A room may use only rooms above its own line, ALL of them or those that it names;
# tools/lint checks every include against this list.
function(corvane_room name)
    cmake_parse_arguments(PARSE_ARGV 1 room "" "" "USES;LINK;PRIVATE")
    set(target corvane_${name})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS
        "${CMAKE_SOURCE_DIR}/Sources/Corvane/${name}/*.cpp" "${CMAKE_SOURCE_DIR}/Sources/Corvane/${name}/*.h")
    list(FILTER sources EXCLUDE REGEX "/UI/[^/]+/") # the QML modules', see CorvaneQml.cmake
    add_library(${target} STATIC ${sources})
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
    target_include_directories(${target} PUBLIC "${CMAKE_SOURCE_DIR}/Sources/Corvane")
    if(room_USES STREQUAL "ALL")
        get_property(room_USES GLOBAL PROPERTY corvane_rooms)
    endif()
    set_property(GLOBAL APPEND PROPERTY corvane_rooms ${name})
    foreach(used IN LISTS room_USES)
        if(NOT TARGET corvane_${used})
            message(FATAL_ERROR "${name} uses ${used}, which is not a floor below it.")
        endif()
        target_link_libraries(${target} PUBLIC corvane_${used})
    endforeach()
    target_link_libraries(${target} PUBLIC ${room_LINK} PRIVATE ${room_PRIVATE})
    corvane_precompile(${target})
    if(NOT name STREQUAL "UI")
        qt_extract_metatypes(${target}) # for the QML modules, which register the types of the rooms
    endif()

    if(CORVANE_TESTS)
        file(GLOB_RECURSE tests CONFIGURE_DEPENDS
            "${CMAKE_SOURCE_DIR}/Tests/${name}/*.cpp" "${CMAKE_SOURCE_DIR}/Tests/${name}/*.h")
        if(tests)
            add_executable(${name}Tests ${tests})
            target_link_libraries(${name}Tests PRIVATE ${target} ${room_PRIVATE} corvane_test_support)
            corvane_precompile(${name}Tests)
            corvane_test(${name}Tests)
        endif()
    endif()
endfunction()

# The Qt core headers, which nearly every file needs, parsed once for the whole build.
add_library(corvane_precompiled STATIC "${CMAKE_SOURCE_DIR}/cmake/precompiled.cpp")
target_link_libraries(corvane_precompiled PRIVATE Qt6::Core)
set_target_properties(corvane_precompiled PROPERTIES AUTOMOC OFF)
target_precompile_headers(corvane_precompiled PRIVATE
    <QString> <QStringList> <QList> <QHash> <QMap> <QObject> <QVariant> <functional> <memory> <optional>)
# Hashed by ccache instead of the compiled header, whose bytes differ between worktrees.
file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/corvane_precompiled.dir/cmake_pch.hxx.pch.sum"
    "${Qt6_VERSION} ${CMAKE_CXX_COMPILER_VERSION} 1")

function(corvane_precompile target)
    target_precompile_headers(${target} REUSE_FROM corvane_precompiled)
    # A new header makes CMake run again, but alone it would not reach moc until an older one changes.
    file(REMOVE "${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/timestamp")
endfunction()

# "Support/Places.h": where the checkout and the children of the tests are. A header and no definitions on the
# command line, which would keep worktrees from sharing the compile cache.
add_library(corvane_places INTERFACE)
target_include_directories(corvane_places INTERFACE "${CMAKE_BINARY_DIR}/generated")
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/generated/Support/Places.h" CONTENT [[
#pragma once
#define CORVANE_SOURCE "@CMAKE_SOURCE_DIR@"
#define CORVANE_TEST_PROGRAMS "@CMAKE_BINARY_DIR@/Tests/Support"
]] @ONLY)

# One line of ctest: the program runs on its own, without a display, in a home of its own. The limit holds beside busy
# processes, too.
# Only one such program runs at a time; the engines' tests, mostly waiting, run beside it.
function(corvane_test target)
    add_test(NAME ${target} COMMAND ${target})
    set_tests_properties(${target} PROPERTIES TIMEOUT 1800 RESOURCE_LOCK programs ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen;QT_QUICK_BACKEND=software;QT_FONT_DPI=96;LC_ALL=C.UTF-8;TZ=Europe/Berlin;UBSAN_OPTIONS=print_stacktrace=1;ASAN_OPTIONS=detect_leaks=1;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/Tests/Support/leaks.txt:print_suppressions=0")
endfunction()

# corvane_program(NAME SOURCE [USES ROOM...])
function(corvane_program name source)
    cmake_parse_arguments(PARSE_ARGV 2 program "" "" "USES")
    add_executable(${name} ${source})
    foreach(used IN LISTS program_USES)
        target_link_libraries(${name} PRIVATE corvane_${used})
    endforeach()
endfunction()
