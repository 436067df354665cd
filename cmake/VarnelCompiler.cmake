# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# Warnings, sanitizers and Qt definitions of every target of the project.

add_compile_definitions(
    QT_NO_CAST_TO_ASCII
    QT_RESTRICTED_CAST_FROM_ASCII
    QT_NO_FOREACH
    QT_USE_QSTRINGBUILDER
)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(VARNEL_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()

if(VARNEL_SANITIZE)
    add_compile_options(-fsanitize=${VARNEL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VARNEL_SANITIZE})
else()
    # A module with undefined symbols would fail only when the IDE loads it. The sanitizers'
    # runtimes are linked into executables alone, so this check is off for them.
    add_link_options("$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,MODULE_LIBRARY>:LINKER:--no-undefined>")
endif()
