# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
#[=======================================================================[
  varnel_add_test(tst_x.cpp [extra sources] [STANDALONE] [AS_USER] [LIBRARIES ...] [LABELS ...]
                  [TIMEOUT seconds] [ENVIRONMENT NAME=VALUE...])

Adds a QtTest program and registers it with ctest. It is linked to the plug-in's objects, unless it is
STANDALONE, and to the demo server, and runs off-screen with directories of its own below the build tree.
Its label is "unit" unless LABELS says otherwise; docs/testing.md says what each label means.
With AS_USER the program runs a second time, as tst_x_user, as an ordinary user: rights that root does not
feel are what many a guard rests on. Where the tests are not root's to run, the first time is such a
user's already, and there is no second.

  varnel_isolate(NAME)

Gives the variable ISOLATED the beginning of a command line that runs a test NAME in this way.

  varnel_add_ide_test(NAME script.py TIMEOUT seconds [ARGUMENTS ...])

Registers a Python program that uses the real IDE by the modules of ide/harness. Its label is "ide".
#]=======================================================================]

set(VARNEL_RUN_ISOLATED "${CMAKE_CURRENT_LIST_DIR}/run-isolated.sh")
set(VARNEL_RUN_AS_USER "${CMAKE_CURRENT_LIST_DIR}/run-as-user.sh")

execute_process(COMMAND id -u OUTPUT_VARIABLE VARNEL_USER_ID OUTPUT_STRIP_TRAILING_WHITESPACE)

macro(varnel_isolate name)
    # One level more, so that what gets out of a test's directories is not taken for another test's.
    set(ISOLATED "${VARNEL_RUN_ISOLATED}" "${CMAKE_BINARY_DIR}/test-directories/${name}/own")
endmacro()

function(varnel_add_test source)
    cmake_parse_arguments(PARSE_ARGV 1 test "STANDALONE;AS_USER" "TIMEOUT" "LIBRARIES;LABELS;ENVIRONMENT")
    cmake_path(GET source STEM name)

    add_executable(${name} ${source} ${test_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE ${test_LIBRARIES} demo_server Qt6::Test)
    if(NOT test_STANDALONE)
        target_link_libraries(${name} PRIVATE varnel_objects)
    endif()

    if(NOT test_TIMEOUT)
        set(test_TIMEOUT 300) # as QtTest gives one function; the longest takes a tenth of it on a quiet machine
    endif()
    if(NOT test_LABELS)
        set(test_LABELS unit)
    endif()
    varnel_isolate(${name})
    add_test(NAME ${name} COMMAND ${ISOLATED} $<TARGET_FILE:${name}>)
    set(names ${name})
    if(test_AS_USER AND VARNEL_USER_ID EQUAL 0)
        varnel_isolate(${name}_user)
        add_test(NAME ${name}_user COMMAND
            "${VARNEL_RUN_AS_USER}" "${CMAKE_BINARY_DIR}/test-directories/${name}_user"
            ${ISOLATED} $<TARGET_FILE:${name}>)
        set_tests_properties(${name}_user PROPERTIES SKIP_RETURN_CODE 77)
        list(APPEND names ${name}_user)
    endif()
    set_tests_properties(${names} PROPERTIES
        TIMEOUT ${test_TIMEOUT} LABELS "${test_LABELS}" ENVIRONMENT "${test_ENVIRONMENT}")
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
