# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
#[=======================================================================[
Finds the IDE: its own CMake package if one is installed, else the shared libraries that the
distribution ships and a tree of the matching plug-in headers.

Variables that guide the search (CMake or environment):
  VARNEL_IDE_HEADERS   root of the header tree, with src/libs and src/plugins below it
Results:
  QtCreator::Utils, QtCreator::Aggregation, QtCreator::ExtensionSystem, QtCreator::Core
  QtCreator_VERSION, QtCreator_PLUGIN_DIR (relative to the prefix), QtCreator_PLUGIN_PATH (absolute),
  QtCreator_TRANSLATIONS_DIR (relative to the prefix)
#]=======================================================================]

include(FindPackageHandleStandardArgs)

find_package(QtCreator CONFIG QUIET)
if(QtCreator_FOUND)
    set(QtCreator_PLUGIN_DIR "${IDE_PLUGIN_PATH}")
    set(QtCreator_TRANSLATIONS_DIR "${IDE_DATA_PATH}/translations")
    return()
endif()

set(_library_dirs "/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/qtcreator")
find_path(QtCreator_LIBRARY_DIR libUtils.so.16 PATHS ${_library_dirs} NO_DEFAULT_PATH)
find_path(QtCreator_PLUGIN_PATH libCore.so PATHS ${_library_dirs}/plugins NO_DEFAULT_PATH)
find_path(QtCreator_HEADERS_DIR src/libs/extensionsystem/iplugin.h
    HINTS "${VARNEL_IDE_HEADERS}" "$ENV{VARNEL_IDE_HEADERS}" NO_DEFAULT_PATH)

# The shared libraries carry the major version only; the package manager knows the rest.
if(QtCreator_LIBRARY_DIR)
    execute_process(
        COMMAND dpkg-query --show --showformat "\${source:Upstream-Version}" qtcreator
        OUTPUT_VARIABLE QtCreator_VERSION ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(QtCreator_PLUGIN_DIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}/qtcreator/plugins")
    set(QtCreator_TRANSLATIONS_DIR "share/qtcreator/translations")
endif()

find_package_handle_standard_args(QtCreator
    REQUIRED_VARS QtCreator_LIBRARY_DIR QtCreator_PLUGIN_PATH QtCreator_HEADERS_DIR
    VERSION_VAR QtCreator_VERSION)

function(_qtcreator_import name file)
    if(NOT TARGET QtCreator::${name})
        add_library(QtCreator::${name} SHARED IMPORTED)
        set_target_properties(QtCreator::${name} PROPERTIES
            IMPORTED_LOCATION "${file}"
            INTERFACE_LINK_LIBRARIES "${ARGN}")
        target_include_directories(QtCreator::${name} SYSTEM INTERFACE
            "${QtCreator_HEADERS_DIR}/src/libs" "${QtCreator_HEADERS_DIR}/src/plugins"
            "${QtCreator_HEADERS_DIR}/src/libs/utils/mimetypes2") # included by bare names
    endif()
endfunction()

if(QtCreator_FOUND)
    find_package(Qt6 REQUIRED COMPONENTS Concurrent Core Gui Network Widgets Xml)
    _qtcreator_import(Utils "${QtCreator_LIBRARY_DIR}/libUtils.so.16"
        Qt6::Concurrent Qt6::Core Qt6::Gui Qt6::Network Qt6::Widgets Qt6::Xml)
    _qtcreator_import(Aggregation "${QtCreator_LIBRARY_DIR}/libAggregation.so.16" Qt6::Core)
    _qtcreator_import(ExtensionSystem "${QtCreator_LIBRARY_DIR}/libExtensionSystem.so.16"
        QtCreator::Aggregation QtCreator::Utils)
    _qtcreator_import(Core "${QtCreator_PLUGIN_PATH}/libCore.so" QtCreator::ExtensionSystem)
endif()

mark_as_advanced(QtCreator_LIBRARY_DIR QtCreator_PLUGIN_PATH QtCreator_HEADERS_DIR)
