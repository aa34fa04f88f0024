# What every target is built with. Settings that a preset chooses are options here.

option(QUILLORA_BENCHMARKS "Build the benchmarks" OFF)
option(QUILLORA_FUZZING "Build the libFuzzer targets (clang only)" OFF)
option(QUILLORA_WERROR "Treat warnings as errors" OFF)
option(QUILLORA_VERIFY_HEADERS "Compile every public header on its own (slow; target all_verify_interface_header_sets)" OFF)
set(QUILLORA_SANITIZE "" CACHE STRING "Sanitizers for the whole build, for example address,undefined")

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_SCAN_FOR_MODULES OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

# The executables stand together, beside the resources that they look up at ../share/quillora.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_library(quillora_settings INTERFACE)
target_compile_options(quillora_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor
    -Werror=missing-field-initializers -Werror=return-type
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=."
    $<$<CXX_COMPILER_ID:Clang>:-Wshadow>
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
    $<$<BOOL:${QUILLORA_WERROR}>:-Werror>
    # GCC 12 takes the frames that Boost.Asio allocates for coroutines for ones that are freed wrongly.
    $<$<AND:$<BOOL:${QUILLORA_WERROR}>,$<CXX_COMPILER_ID:GNU>>:-Wno-error=mismatched-new-delete>
    $<$<CONFIG:Debug>:-g1>)
target_compile_definitions(quillora_settings INTERFACE
    BOOST_ASIO_SEPARATE_COMPILATION BOOST_ASIO_NO_DEPRECATED
    $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

# A program names only those libraries that it uses: each costs time at every start.
target_link_options(quillora_settings INTERFACE LINKER:--as-needed)

find_program(LLD_PROGRAM NAMES ld.lld-19)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND LLD_PROGRAM)
    target_link_options(quillora_settings INTERFACE "--ld-path=${LLD_PROGRAM}")
endif()

if(QUILLORA_SANITIZE)
    target_compile_options(quillora_settings INTERFACE
        "-fsanitize=${QUILLORA_SANITIZE}" -fno-omit-frame-pointer
        $<$<BOOL:${QUILLORA_FUZZING}>:-fsanitize=fuzzer-no-link>)
    target_link_options(quillora_settings INTERFACE "-fsanitize=${QUILLORA_SANITIZE}")
    if(QUILLORA_SANITIZE MATCHES "undefined")
        target_compile_options(quillora_settings INTERFACE -fno-sanitize-recover=undefined)
    endif()
endif()
