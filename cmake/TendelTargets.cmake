# What every target shares, and the functions that make a module and a test.

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(tendel_options INTERFACE)
target_compile_features(tendel_options INTERFACE cxx_std_20)
target_compile_options(
    tendel_options
    INTERFACE -Wall
              -Wextra
              -Wpedantic
              -Wshadow
              -Wconversion
              -Wold-style-cast
              -Wnon-virtual-dtor
              -Woverloaded-virtual
              $<$<BOOL:${TENDEL_WERROR}>:-Werror>)
target_include_directories(tendel_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(TENDEL_SANITIZE)
    target_compile_options(tendel_options INTERFACE -fsanitize=${TENDEL_SANITIZE}
                                                    -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(tendel_options INTERFACE -fsanitize=${TENDEL_SANITIZE})
endif()

# tendel_module(NAME SOURCES a.cpp … LINK targets …): one folder of src/ as a static library tendel_NAME.
function(tendel_module name)
    cmake_parse_arguments(MODULE "" "" "SOURCES;LINK" ${ARGN})
    add_library(tendel_${name} STATIC ${MODULE_SOURCES})
    target_link_libraries(tendel_${name} PUBLIC tendel_options ${MODULE_LINK})
endfunction()

# tendel_test(NAME SOURCES a_test.cpp … LINK targets … [LABELS …]): one test program, its cases found by ctest.
function(tendel_test name)
    cmake_parse_arguments(TEST "" "" "SOURCES;LINK;LABELS" ${ARGN})
    add_executable(${name}_test ${TEST_SOURCES})
    target_include_directories(${name}_test PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name}_test PRIVATE tendel_options ${TEST_LINK} GTest::gtest_main)
    set(properties TIMEOUT 300)
    if(TEST_LABELS)
        list(APPEND properties LABELS ${TEST_LABELS})
    endif()
    gtest_discover_tests(${name}_test TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60
                         PROPERTIES ${properties})
endfunction()
