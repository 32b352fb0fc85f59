# Compiler cache, linker, warnings and sanitizers for everything in the tree.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
    # Without this a precompiled header is rebuilt into every cache key by its time stamp.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-fpch-preprocess)
    endif()
endif()

find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM)
    add_link_options(-fuse-ld=mold)
endif()

if(QV_SANITIZE)
    add_compile_options(-fsanitize=${QV_SANITIZE} -fno-omit-frame-pointer -O1 -g1)
    add_link_options(-fsanitize=${QV_SANITIZE})
    if(QV_SANITIZE MATCHES "undefined")
        add_compile_options(-fno-sanitize-recover=all)
    endif()
endif()

# Warnings, as errors, for our own targets only.
add_library(qv_warnings INTERFACE)
target_compile_options(qv_warnings INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(QV_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # gcc's flow warnings misfire on instrumented code.
    target_compile_options(qv_warnings INTERFACE -Wno-maybe-uninitialized -Wno-stringop-overflow -Wno-array-bounds -Wno-tsan)
endif()
