# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
#[=======================================================================[
  varnel_add_test(tst_x.cpp [extra sources] [STANDALONE] [LIBRARIES ...] [LABELS ...] [TIMEOUT seconds])

Adds a QtTest program and registers it with ctest. It is linked to the plug-in's objects, unless it is
STANDALONE, and to the demo server, and runs off-screen with directories of its own below the build tree.
Its label is "unit" unless LABELS says otherwise; docs/testing.md says what each label means.

  varnel_isolate(NAME)

Gives the variable ISOLATED the beginning of a command line that runs a test NAME in this way.

  varnel_add_ide_test(NAME script.py TIMEOUT seconds [ARGUMENTS ...])

Registers a Python program that uses the real IDE by the modules of ide/harness. Its label is "ide".
#]=======================================================================]

set(VARNEL_RUN_ISOLATED "${CMAKE_CURRENT_LIST_DIR}/run-isolated.sh")

macro(varnel_isolate name)
    # One level more, so that what gets out of a test's directories is not taken for another test's.
    set(ISOLATED "${VARNEL_RUN_ISOLATED}" "${CMAKE_BINARY_DIR}/test-directories/${name}/own")
endmacro()

function(varnel_add_test source)
    cmake_parse_arguments(PARSE_ARGV 1 test "STANDALONE" "TIMEOUT" "LIBRARIES;LABELS")
    cmake_path(GET source STEM name)

    add_executable(${name} ${source} ${test_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE ${test_LIBRARIES} demo_server Qt6::Test)
    if(NOT test_STANDALONE)
        target_link_libraries(${name} PRIVATE varnel_objects)
    endif()

    if(NOT test_TIMEOUT)
        set(test_TIMEOUT 120)
    endif()
    if(NOT test_LABELS)
        set(test_LABELS unit)
    endif()
    varnel_isolate(${name})
    add_test(NAME ${name} COMMAND ${ISOLATED} $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${test_TIMEOUT} LABELS "${test_LABELS}")
endfunction()

function(varnel_add_ide_test name script)
    cmake_parse_arguments(PARSE_ARGV 2 test "" "TIMEOUT" "ARGUMENTS")
    add_test(NAME ${name}
        COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/${script}" ${test_ARGUMENTS})
    set(environment
        "PYTHONPATH=${CMAKE_SOURCE_DIR}/ide/harness"
        "PYTHONDONTWRITEBYTECODE=1"
        "VARNEL_BUILD_DIR=${CMAKE_BINARY_DIR}"
    )
    set_tests_properties(${name} PROPERTIES LABELS ide TIMEOUT ${test_TIMEOUT} ENVIRONMENT "${environment}")
endfunction()
