# One function a kind of target. A folder's CMakeLists.txt lists its sources and what it uses; the
# architecture check (Tests/Architecture) reads the same lists back.

# What people run is lightly optimised in the everyday build too: it costs a quarter more to compile and is
# several times as fast. Tests are not, and neither is what a sanitizer watches.
set(quillora_everyday_options "")
if(NOT QUILLORA_SANITIZE)
    set(quillora_everyday_options $<$<CONFIG:Debug>:-O1>)
endif()

# quillora_library(NAME SOURCES ... HEADERS ... USES ... WRAPS ...)
#   USES   other Quillora targets, visible in the headers and so passed on
#   WRAPS  outside libraries that stay inside this target
# Without SOURCES it is a header-only interface.
function(quillora_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;HEADERS;USES;WRAPS" ${ARGN})
    if(arg_SOURCES)
        add_library(${name} STATIC ${arg_SOURCES})
        set(scope PUBLIC)
        target_link_libraries(${name} PRIVATE ${arg_WRAPS})
        target_compile_options(${name} PRIVATE ${quillora_everyday_options})
    else()
        add_library(${name} INTERFACE)
        set(scope INTERFACE)
    endif()
    target_sources(${name} ${scope} FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${arg_HEADERS})
    target_link_libraries(${name} ${scope} quillora_settings ${arg_USES})
    set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ${QUILLORA_VERIFY_HEADERS})
endfunction()

# quillora_executable(NAME SOURCES ... USES ... WRAPS ...)
function(quillora_executable name)
    cmake_parse_arguments(arg "" "" "SOURCES;USES;WRAPS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE quillora_settings ${arg_USES} ${arg_WRAPS})
    target_compile_options(${name} PRIVATE ${quillora_everyday_options})
endfunction()

# quillora_tests(NAME SOURCES ... USES ... WRAPS ... LABEL unit|contract|journey|architecture)
# Each TEST becomes a CTest test of its own, so that it runs in its own process.
function(quillora_tests name)
    cmake_parse_arguments(arg "" "LABEL" "SOURCES;USES;WRAPS;ENVIRONMENT" ${ARGN})
    if(NOT arg_LABEL)
        set(arg_LABEL unit)
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE quillora_settings ${arg_USES} ${arg_WRAPS} GTest::gtest_main GTest::gmock)
    target_compile_definitions(${name} PRIVATE QUILLORA_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
        QUILLORA_BUILD_DIR="${PROJECT_BINARY_DIR}")
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
        PROPERTIES LABELS ${arg_LABEL} ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()
