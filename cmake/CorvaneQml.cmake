# The QML modules of the window: each folder under Sources/Corvane/UI with QML in it is the module Corvane.FOLDER, a
# static library of its own with the C++ that stands beside the QML.
# QML is compiled to byte code, not to C++: the C++ of Qt 6.4 reads the properties of an item that may be null from the
# wrong address. The sanitized build compiles to byte code as it runs, so that it is built faster.
if(CORVANE_SANITIZE)
    set(qml_cache NO_CACHEGEN)
endif()

find_program(QSB qsb HINTS "${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS}" /usr/lib/qt6/bin REQUIRED)

# The folder's shaders, X.vert and X.frag, as ":/shaders/X.vert.qsb" and so on.
function(corvane_shaders target folder)
    file(GLOB shaders CONFIGURE_DEPENDS "${folder}/*.vert" "${folder}/*.frag")
    foreach(shader IN LISTS shaders)
        cmake_path(GET shader FILENAME name)
        set(made "${CMAKE_BINARY_DIR}/shaders/${name}.qsb")
        set(batchable)
        if(name MATCHES "\\.vert$")
            set(batchable -b)
        endif()
        add_custom_command(OUTPUT "${made}" DEPENDS "${shader}"
            COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_BINARY_DIR}/shaders"
            COMMAND "${QSB}" --glsl "100 es,120,150" ${batchable} -o "${made}" "${shader}")
        list(APPEND compiled "${made}")
    endforeach()
    if(compiled)
        qt_add_resources(${target} ${target}_shaders PREFIX "/shaders" BASE "${CMAKE_BINARY_DIR}/shaders" FILES ${compiled})
    endif()
endfunction()

function(corvane_qml name)
    set(folder "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI/${name}")
    set(target corvane_UI_${name})
    file(GLOB sources CONFIGURE_DEPENDS "${folder}/*.cpp" "${folder}/*.h")
    file(GLOB qml_files CONFIGURE_DEPENDS "${folder}/*.qml")
    set(depends)
    foreach(file IN LISTS qml_files)
        file(STRINGS "${file}" imports REGEX "^import Corvane\\.")
        list(APPEND depends ${imports})
        cmake_path(GET file FILENAME alias)
        file(STRINGS "${file}" singleton REGEX "^pragma Singleton")
        set_source_files_properties("${file}" PROPERTIES QT_RESOURCE_ALIAS "${alias}")
        if(singleton)
            set_source_files_properties("${file}" PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
        endif()
    endforeach()
    list(TRANSFORM depends REPLACE "import " "")
    list(REMOVE_DUPLICATES depends)
    list(REMOVE_ITEM depends Corvane.${name})
    add_library(${target} STATIC ${sources})
    qt_add_qml_module(${target} URI Corvane.${name} VERSION 1.0 RESOURCE_PREFIX "/qt/qml" NO_PLUGIN NO_LINT ${qml_cache}
        OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/qml/Corvane/${name}" OUTPUT_TARGETS made
        IMPORTS QtQuick DEPENDENCIES ${depends} QML_FILES ${qml_files})
    set_target_properties(${target} PROPERTIES QT_QMLCACHEGEN_ARGUMENTS --only-bytecode)
    set_target_properties(${made} PROPERTIES AUTOMOC OFF)
    target_include_directories(${target} PUBLIC "${CMAKE_SOURCE_DIR}/Sources/Corvane" PRIVATE "${folder}" "${QRCODEGEN_INCLUDE}")
    target_link_libraries(${target} PUBLIC corvane_Shell Qt6::Quick PRIVATE Qt6::Qml "${QRCODEGEN_LIBRARY}")
    corvane_precompile(${target})
    corvane_shaders(${target} "${folder}")
    target_link_libraries(corvane_UI PUBLIC ${target})
endfunction()

file(GLOB modules RELATIVE "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI" CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI/*/*.qml")
list(TRANSFORM modules REPLACE "/.*" "")
list(REMOVE_DUPLICATES modules)
foreach(module IN LISTS modules)
    corvane_qml(${module})
    string(APPEND declarations "void qml_register_types_Corvane_${module}();\n")
    string(APPEND calls "    qml_register_types_Corvane_${module}();\n")
endforeach()

# "UI/QmlModules.h": naming each module's registration keeps it in the program.
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/generated/UI/QmlModules.h" CONTENT [[
#pragma once

@declarations@
inline void registerQmlModules()
{
@calls@}
]] @ONLY)
target_include_directories(corvane_UI PRIVATE "${CMAKE_BINARY_DIR}/generated")

file(GLOB icons CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI/Icons/*.svg")
qt_add_resources(corvane_UI icons PREFIX "/qt/qml/Corvane" BASE "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI" FILES ${icons})
