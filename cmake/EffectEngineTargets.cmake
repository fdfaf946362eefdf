# Compiler settings of the whole project, and the function that declares one layer of the engine.

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}
        CCACHE_NOHASHDIR=1 ${CCACHE_PROGRAM})
endif()

# Bytes must not depend on the processor: no contraction into fused multiply-adds, no reordering.
# (-Wrestrict reports impossible overlaps inside std::string with this compiler.)
add_compile_options(-Wall -Wextra -Wshadow $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor> -Wno-restrict -ffp-contract=off -fno-math-errno -fno-trapping-math)

if(EFFECTENGINE_SANITIZE)
    # (The instrumentation makes the compiler doubt initialised members of std::function.)
    add_compile_options(-fsanitize=${EFFECTENGINE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        -Wno-maybe-uninitialized)
    add_link_options(-fsanitize=${EFFECTENGINE_SANITIZE})
endif()

# effectengine_layer(<name> DIRECTORIES dir... [LIBRARIES target...])
# Declares one layer: every .cpp of the directories, built once as an object library that the shared library,
# the host tool, the tests and the benches link. (A static archive would drop units that only register
# themselves.)
function(effectengine_layer name)
    cmake_parse_arguments(layer "" "" "DIRECTORIES;LIBRARIES" ${ARGN})
    set(sources)
    foreach(directory IN LISTS layer_DIRECTORIES)
        file(GLOB found CONFIGURE_DEPENDS ${directory}/*.cpp)
        list(APPEND sources ${found})
    endforeach()
    add_library(${name} OBJECT ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/common ${PROJECT_SOURCE_DIR}/include
        ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${layer_LIBRARIES})
    # Hosts call from threads with small stacks. (Sanitizers put more on the stack.)
    if(NOT EFFECTENGINE_SANITIZE)
        target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Werror=frame-larger-than=16384>)
    endif()
endfunction()

# effectengine_describe_interface(source...)
# Gives the units that define a library's exported functions debug information in every build, which changes no code:
# scripts/abi reads the interface from it.
function(effectengine_describe_interface)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -g)
endfunction()
