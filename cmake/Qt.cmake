# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

# The Qt of the whole build: its libraries as Qt::NAME, its folders, and its tools.
set(PARLEY_QT 5 CACHE STRING "Major version of Qt: 5, as the handset's platform has it, or 6")
set_property(CACHE PARLEY_QT PROPERTY STRINGS 5 6)
set(components Core Gui Qml Quick DBus)
if(PARLEY_BUILD_SIMULATOR)
    list(APPEND components Network)
endif()
if(BUILD_TESTING)
    list(APPEND components Test)
endif()
if(PARLEY_QT STREQUAL 5)
    find_package(Qt5 5.15 REQUIRED COMPONENTS ${components})
    set(PARLEY_QT_UNDEPRECATED 0x050F00)
elseif(PARLEY_QT STREQUAL 6)
    find_package(Qt6 6.4 REQUIRED COMPONENTS ${components})
    # In Qt 6.8, a D-Bus reply does not say who sent it, and only the owner of a service is believed.
    if(Qt6_VERSION VERSION_GREATER_EQUAL 6.5)
        message(FATAL_ERROR "Qt ${Qt6_VERSION} is not supported yet, because its D-Bus replies do not say "
            "who sent them. Qt 6.4 and Qt 5.15 are.")
    endif()
    set(PARLEY_QT_UNDEPRECATED 0x060400)
else()
    message(FATAL_ERROR "PARLEY_QT is the major version of Qt, 5 or 6, and not \"${PARLEY_QT}\".")
endif()

get_target_property(qmake Qt${PARLEY_QT}::qmake LOCATION)
foreach(folder HOST_BINS INSTALL_QML)
    execute_process(COMMAND ${qmake} -query QT_${folder}
        OUTPUT_VARIABLE PARLEY_QT_${folder} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# parley_qt_tool(VARIABLE NAME [REQUIRED]): a tool of this Qt. One in PATH may be another Qt's. Qt 6 keeps
# the tools that only builds use elsewhere, beside moc.
function(parley_qt_tool variable name)
    get_target_property(moc Qt${PARLEY_QT}::moc LOCATION)
    get_filename_component(tools_of_builds ${moc} DIRECTORY)
    find_program(${variable} NAMES ${name} PATHS ${PARLEY_QT_HOST_BINS} ${tools_of_builds}
        NO_DEFAULT_PATH DOC "Qt ${PARLEY_QT}'s ${name}" ${ARGN})
endfunction()
