# One place for what every target of ours is compiled with; third-party headers stay out of it.
option(VELBRIX_WERROR "Treat warnings as errors" ON)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_CURRENT_LIST_DIR}/compile)
    # A precompiled header carries no time stamp and is asked for without the path of its text, so that ccache can
    # reuse what was built with it.
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
    set(CMAKE_CXX_COMPILE_OPTIONS_USE_PCH -Xclang -include-pch -Xclang <PCH_FILE>)
endif()

add_library(velbrix_warnings INTERFACE)
target_compile_options(velbrix_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    -Wold-style-cast -Wconversion -Wimplicit-fallthrough -Wsuggest-override
    $<$<BOOL:${VELBRIX_WERROR}>:-Werror>)
target_compile_definitions(velbrix_warnings INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH QT_NO_KEYWORDS
    QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# What nearly every file includes; compiled once in advance.
set(VELBRIX_COMMON_HEADERS <chrono> <functional> <memory> <QCoroTask> <QDateTime> <QHash> <QJsonObject> <QList>
    <QObject> <QProperty> <QString> <QStringList>)

# A library of ours: velbrix_library(velbrix_core); its folders add their sources with target_sources.
function(velbrix_library name)
    add_library(${name} STATIC)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/Sources/Velbrix)
    target_link_libraries(${name} PRIVATE velbrix_warnings)
    target_precompile_headers(${name} PRIVATE ${VELBRIX_COMMON_HEADERS})
endfunction()

# A test is one executable around one class, named after it: velbrix_test(capture/RecorderControllerTest [LIBS …])
function(velbrix_test path)
    cmake_parse_arguments(ARG "DESKTOP" "TIMEOUT" "LIBS" ${ARGN})
    cmake_path(GET path FILENAME name)
    add_executable(${name} ${CMAKE_CURRENT_SOURCE_DIR}/${path}.cpp ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc)
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} velbrix_core velbrix_warnings Qt6::Test)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/Tests ${CMAKE_CURRENT_BINARY_DIR})
    # One call of moc, which the test includes, in place of a second source and a search through all its headers.
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    qt_generate_moc(${CMAKE_CURRENT_SOURCE_DIR}/${path}.cpp ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc TARGET ${name})
    target_precompile_headers(${name} REUSE_FROM ${VELBRIX_TEST_HEADERS})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 60)
    endif()
    if(ARG_DESKTOP)
        # A private X server, session bus and sound server for each test.
        add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/Tests/support/private-desktop $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES LABELS desktop)
    else()
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
        add_dependencies(velbrix_tests_without_desktop ${name})
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()
