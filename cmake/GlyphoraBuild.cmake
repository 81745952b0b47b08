# SPDX-License-Identifier: MIT
# Compiler settings shared by every target, and the functions that declare targets.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
include(GNUInstallDirs)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

find_program(GLYPHORA_CCACHE ccache)
if(GLYPHORA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # One cache serves every clone: paths below the root are taken as relative to it.
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
        "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros "${GLYPHORA_CCACHE}") # what precompiled headers take
endif()

add_library(glyphora_settings INTERFACE)
target_compile_options(glyphora_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # At -O3 it takes "text" + std::string for an overlapping copy. (clang-tidy, which reads the same
    # command lines, does not know that warning.)
    target_compile_options(glyphora_settings INTERFACE -Wno-unknown-warning-option -Wno-restrict)
endif()
find_package(Threads REQUIRED)
target_link_libraries(glyphora_settings INTERFACE Threads::Threads)

if(GLYPHORA_SANITIZE)
    target_compile_options(glyphora_settings INTERFACE
        -fsanitize=${GLYPHORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(glyphora_settings INTERFACE -fsanitize=${GLYPHORA_SANITIZE})
endif()
if(GLYPHORA_FUZZ) # the libraries too, or libFuzzer would see nothing of them
    target_compile_options(glyphora_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(GLYPHORA_COVERAGE)
    target_compile_options(glyphora_settings INTERFACE --coverage)
    target_link_options(glyphora_settings INTERFACE --coverage)
endif()

# glyphora_library(NAME [SHARED] SOURCES ... [PUBLIC libs...] [PRIVATE libs...] [INCLUDE dirs...])
function(glyphora_library name)
    cmake_parse_arguments(ARG "SHARED" "" "SOURCES;PUBLIC;PRIVATE;INCLUDE" ${ARGN})
    if(ARG_SHARED)
        add_library(${name} SHARED ${ARG_SOURCES})
    else()
        add_library(${name} STATIC ${ARG_SOURCES})
    endif()
    target_include_directories(${name} PUBLIC ${ARG_INCLUDE})
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE glyphora_settings ${ARG_PRIVATE})
endfunction()

# glyphora_bundle(NAME BUNDLE SOURCES ... EXPORTS script LIBRARIES static libraries of this project...)
# A module in <build>/BUNDLE.aip/Contents/<system>, which the host loads and unloads. Everything in
# it is local but what the script names, also what the compiler makes unique in the process (which
# would keep the code mapped). Not by -fno-gnu-unique: clang-tidy stops at that option.
function(glyphora_bundle name bundle)
    cmake_parse_arguments(ARG "" "EXPORTS" "SOURCES;LIBRARIES" ${ARGN})
    add_library(${name} MODULE ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES
        PREFIX "" OUTPUT_NAME "${bundle}" LINK_DEPENDS "${ARG_EXPORTS}"
        LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/${bundle}.aip/Contents/${CMAKE_SYSTEM_NAME}")
    foreach(target IN ITEMS ${name} LISTS ARG_LIBRARIES)
        set_target_properties(${target} PROPERTIES
            CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    endforeach()
    target_link_libraries(${name} PRIVATE glyphora_settings ${ARG_LIBRARIES})
    target_link_options(${name} PRIVATE "LINKER:--version-script=${ARG_EXPORTS}" "LINKER:-z,defs")
endfunction()

# glyphora_program(NAME SOURCES ... LIBRARIES ...)
function(glyphora_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE glyphora_settings ${ARG_LIBRARIES})
endfunction()

# glyphora_catalogues(NAME DOMAIN)
# Target NAME: the catalogues DOMAIN of each LOCALE.po in the calling folder, where a program looks for
# them. They are named as the locales for which plug-ins speak their languages.
function(glyphora_catalogues name domain)
    find_package(Gettext REQUIRED)
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.po")
    set(catalogues "")
    foreach(source IN LISTS sources)
        cmake_path(GET source STEM locale)
        set(folder "share/locale/${locale}/LC_MESSAGES")
        set(catalogue "${CMAKE_BINARY_DIR}/${folder}/${domain}.mo")
        file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/${folder}")
        add_custom_command(OUTPUT "${catalogue}"
            COMMAND "${GETTEXT_MSGFMT_EXECUTABLE}" --check --output-file=${catalogue} "${source}"
            DEPENDS "${source}" VERBATIM)
        install(FILES "${catalogue}" DESTINATION "${folder}")
        list(APPEND catalogues "${catalogue}")
    endforeach()
    add_custom_target(${name} ALL DEPENDS ${catalogues})
endfunction()

# What every test runs with. (One variable at most: CMake would take a second for another property.)
set(GLYPHORA_TEST_ENVIRONMENT)
if(GLYPHORA_SANITIZE MATCHES "thread")
    set(GLYPHORA_TEST_ENVIRONMENT
        ENVIRONMENT "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/tsan.supp")
elseif(GLYPHORA_SANITIZE)
    # The unwinding of a cancelled thread does not tell the sanitizer which frames have gone; with
    # locals kept off the real stack that leaves nothing to take for an error.
    set(GLYPHORA_TEST_ENVIRONMENT ENVIRONMENT "ASAN_OPTIONS=detect_stack_use_after_return=1")
endif()

# glyphora_test(NAME SOURCES ... LIBRARIES ... [TIMEOUT seconds] [LABELS ...])
# Every test case becomes a CTest test of its own. TIMEOUT is a watchdog, not a measurement.
function(glyphora_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 1800)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE testsupport_options)
    target_precompile_headers(${name} REUSE_FROM testsupport_headers)
    target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE glyphora_settings ${ARG_LIBRARIES}
        GTest::gmock GTest::gtest GTest::gtest_main)
    set(labels)
    if(ARG_LABELS) # CMake would take the next property for an empty one's value
        set(labels LABELS "${ARG_LABELS}")
    endif()
    # Parameters go by their names: their contents would fill the list.
    gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
        NO_PRETTY_VALUES
        PROPERTIES TIMEOUT ${ARG_TIMEOUT} ${labels} ${GLYPHORA_TEST_ENVIRONMENT})
endfunction()

# glyphora_benchmark(NAME SOURCES ... LIBRARIES ...)
function(glyphora_benchmark name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE glyphora_settings ${ARG_LIBRARIES} benchmark::benchmark)
endfunction()

# glyphora_fuzz(NAME SOURCES ... LIBRARIES ... CORPUS folder)
# With GLYPHORA_FUZZ a libFuzzer program; otherwise a test that replays the seed corpus.
function(glyphora_fuzz name)
    cmake_parse_arguments(ARG "" "CORPUS" "SOURCES;LIBRARIES" ${ARGN})
    if(GLYPHORA_FUZZ)
        add_executable(${name} ${ARG_SOURCES})
        target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
        target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    else()
        add_executable(${name} ${ARG_SOURCES})
        target_link_libraries(${name} PRIVATE fuzz_replay)
        add_test(NAME ${name}.ReplaysItsCorpus
            COMMAND ${name} "${CMAKE_CURRENT_SOURCE_DIR}/${ARG_CORPUS}")
        set_tests_properties(${name}.ReplaysItsCorpus PROPERTIES TIMEOUT 300)
    endif()
    target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE glyphora_settings ${ARG_LIBRARIES})
endfunction()

# glyphora_add_folders(a b ...): adds each sub-folder that holds a CMakeLists.txt.
function(glyphora_add_folders)
    foreach(folder IN LISTS ARGN)
        if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt")
            add_subdirectory(${folder})
        endif()
    endforeach()
endfunction()
