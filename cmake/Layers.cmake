# The two building blocks of the whole tree: a layer of the program and a test of one unit.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# What every target compiles with. No contraction: a fused multiply-add would change results from
# one processor to the next. For C++ alone: the resource compiler knows none of these.
add_library(tavorin_options INTERFACE)
add_library(tavorin::options ALIAS tavorin_options)
target_compile_options(tavorin_options INTERFACE
    $<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang>:-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
        -Woverloaded-virtual -ffp-contract=off>
    $<$<COMPILE_LANG_AND_ID:CXX,MSVC>:/W4 /utf-8 /fp:precise>
    $<$<AND:$<BOOL:${TAVORIN_WARNINGS_AS_ERRORS}>,$<COMPILE_LANG_AND_ID:CXX,GNU,Clang>>:-Werror>
    $<$<AND:$<BOOL:${TAVORIN_WARNINGS_AS_ERRORS}>,$<COMPILE_LANG_AND_ID:CXX,MSVC>>:/WX>)
target_compile_definitions(tavorin_options INTERFACE QT_DEPRECATED_WARNINGS QT_NO_FOREACH)

if(TAVORIN_SANITIZE)
    add_compile_options(-fsanitize=${TAVORIN_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${TAVORIN_SANITIZE})
endif()

# add_layer(<name> [OBJECT] SOURCES <file>... [DEPENDS <target>...])
# A layer of the architecture: the library tavorin_<name>, used as tavorin::<name>. DEPENDS names
# the layers and libraries that it stands on. OBJECT is for layers that nothing refers to by
# symbol, which a linker would drop from a static library.
function(add_layer name)
    cmake_parse_arguments(LAYER "OBJECT" "" "SOURCES;DEPENDS" ${ARGN})
    set(kind STATIC)
    if(LAYER_OBJECT)
        set(kind OBJECT)
    endif()
    add_library(tavorin_${name} ${kind} ${LAYER_SOURCES})
    add_library(tavorin::${name} ALIAS tavorin_${name})
    target_include_directories(tavorin_${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(tavorin_${name} PUBLIC ${LAYER_DEPENDS} PRIVATE tavorin::options)
    set_target_properties(tavorin_${name} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
endfunction()

# Tests work in folders on any drive: what they name of the sources has its own. Wine's Z: is the root.
set(TEST_DRIVE "")
if(WIN32 AND CMAKE_CROSSCOMPILING)
    set(TEST_DRIVE Z:)
endif()

# add_unit_test(<name> DEPENDS <target>... [SOURCES <file>...] [LABELS <label>...] [XVFB])
# The test program tests/<name>.cpp, run offscreen, or on a virtual X display with XVFB.
function(add_unit_test name)
    if(NOT BUILD_TESTING)
        return()
    endif()
    cmake_parse_arguments(TEST "XVFB" "" "DEPENDS;SOURCES;LABELS" ${ARGN})
    add_executable(${name} ${PROJECT_SOURCE_DIR}/tests/${name}.cpp ${TEST_SOURCES})
    target_link_libraries(${name} PRIVATE ${TEST_DEPENDS} Qt5::Test tavorin::options)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_compile_definitions(${name} PRIVATE
        TEST_DATA_DIR="${TEST_DRIVE}${PROJECT_SOURCE_DIR}/tests/data"
        SOURCE_DIR="${TEST_DRIVE}${PROJECT_SOURCE_DIR}")
    if(TAVORIN_SANITIZE STREQUAL "thread")
        target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/tsanqt.cpp)
        target_link_libraries(${name} PRIVATE ${CMAKE_DL_LIBS})
    endif()
    set_target_properties(${name} PROPERTIES AUTOMOC ON
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
    if(TEST_XVFB)
        add_test(NAME ${name} COMMAND xvfb-run -a -s "-screen 0 1920x1080x24" $<TARGET_FILE:${name}>)
        set(platform xcb)
    else()
        add_test(NAME ${name} COMMAND ${name})
        set(platform offscreen)
    endif()
    set_tests_properties(${name} PROPERTIES LABELS "${TEST_LABELS}" TIMEOUT 300
        ENVIRONMENT "QT_QPA_PLATFORM=${platform};LC_ALL=C.UTF-8;QT_LOGGING_RULES=")
endfunction()
