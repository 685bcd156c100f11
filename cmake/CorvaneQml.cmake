# The window's QML module "Corvane": every QML file and icon under Sources/Corvane/UI, compiled into the room.
# The sanitized build leaves the ahead-of-time compilation out: it doubles the room's build and tests nothing.
file(GLOB_RECURSE qml_files CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI/*.qml")
file(GLOB icons CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI/Icons/*.svg")
foreach(file IN LISTS qml_files icons)
    file(RELATIVE_PATH alias "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI" "${file}")
    set_source_files_properties("${file}" PROPERTIES QT_RESOURCE_ALIAS "${alias}")
endforeach()
foreach(singleton IN ITEMS Theme/Theme Shell/Keymap Controls/OpenMenus)
    set_source_files_properties("${CMAKE_SOURCE_DIR}/Sources/Corvane/UI/${singleton}.qml"
        PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
endforeach()

if(CORVANE_SANITIZE)
    set(qml_cache NO_CACHEGEN)
endif()
qt_add_qml_module(corvane_UI URI Corvane VERSION 1.0 RESOURCE_PREFIX "/qt/qml" NO_PLUGIN NO_LINT ${qml_cache}
    OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/qml/Corvane"
    IMPORTS QtQuick QML_FILES ${qml_files} RESOURCES ${icons})
target_include_directories(corvane_UI PRIVATE "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI"
    "${CMAKE_SOURCE_DIR}/Sources/Corvane/UI/Terminals" "${QRCODEGEN_INCLUDE}")
target_link_libraries(corvane_UI PRIVATE "${QRCODEGEN_LIBRARY}")
