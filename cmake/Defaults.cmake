# How everything here is compiled.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

# The inner loops over pixels rely on the vectoriser, which GCC 12 runs in full at -O3 only.
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # It has to be told that it may trust a precompiled header's macros and times.
    set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER env "CCACHE_SLOPPINESS=pch_defines,time_macros" "${CCACHE}")
endif()

add_library(vellumine_options INTERFACE)
target_compile_options(vellumine_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wimplicit-fallthrough)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 at -O3 takes the growth of a std::vector for an overflow, inside the library's header.
    # The sanitizers look for real ones.
    target_compile_options(vellumine_options INTERFACE
        -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
endif()
target_include_directories(vellumine_options INTERFACE "${CMAKE_SOURCE_DIR}/src")

# Some libraries ask for it, and what is precompiled is shared by all.
add_compile_options(-pthread)

if(VELLUMINE_SANITIZE)
    # Line numbers are all that a report needs, and take half the time to write.
    set(CMAKE_CXX_FLAGS_DEBUG "-g1")
    add_compile_options(-fsanitize=${VELLUMINE_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all -O1)
    add_link_options(-fsanitize=${VELLUMINE_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND VELLUMINE_SANITIZE MATCHES "address")
        add_compile_definitions(__SANITIZE_ADDRESS__) # GCC says so itself
    endif()
    # GCC's analysis of what is initialised is wrong about instrumented code; the plain builds keep it.
    target_compile_options(vellumine_options INTERFACE
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
if(VELLUMINE_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# vellumine_precompiled(NAME HEADER [LINK target...] [DEFINITIONS definition...] [OPTIONS option...])
# Makes NAME of headers that are read once for several libraries or programs, which take them over with
# `target_precompile_headers(... REUSE_FROM NAME)`. The compiler insists that they are compiled with the
# same options, and with definitions that make no difference to the headers.
function(vellumine_precompiled name header)
    cmake_parse_arguments(ARG "" "" "LINK;DEFINITIONS;OPTIONS" ${ARGN})
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "// has nothing but its precompiled header\n")
    add_library(${name} OBJECT EXCLUDE_FROM_ALL "${source}")
    target_link_libraries(${name} PRIVATE vellumine_options ${ARG_LINK})
    target_compile_definitions(${name} PRIVATE ${ARG_DEFINITIONS})
    target_compile_options(${name} PRIVATE ${ARG_OPTIONS})
    target_precompile_headers(${name} PRIVATE "${CMAKE_SOURCE_DIR}/cmake/precompiled/${header}")
endfunction()

set(VELLUMINE_QT_DEFINITIONS
    QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING)

# vellumine_library(NAME [DEPENDS target...] [PRIVATE target...] [SUBFOLDERS])
# A static library of every .cpp file below the folder that calls it.
function(vellumine_library name)
    cmake_parse_arguments(ARG "" "" "DEPENDS;PRIVATE" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS *.cpp *.h)
    add_library(vellumine_${name} STATIC ${sources})
    add_library(vellumine::${name} ALIAS vellumine_${name})
    target_link_libraries(vellumine_${name}
        PUBLIC ${ARG_DEPENDS}
        PRIVATE vellumine_options ${ARG_PRIVATE})
    target_include_directories(vellumine_${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
    set(kind standard)
    if(ARG_DEPENDS MATCHES "Qt6|core|pipeline|batch" OR ARG_PRIVATE MATCHES "Qt6")
        target_compile_definitions(vellumine_${name} PRIVATE ${VELLUMINE_QT_DEFINITIONS})
        set(kind qt)
    endif()
    if(ARG_DEPENDS MATCHES "Qt6::Quick")
        set(kind quick)
    endif()
    target_precompile_headers(vellumine_${name} REUSE_FROM vellumine_precompiled_${kind})
endfunction()
