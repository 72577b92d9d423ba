# Settings that every target of the project shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # Precompiled headers hold times and macros, which would keep what includes them out of the cache.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
endif()

# Under the sanitizers and for the linter it is enough to build kernels for two instruction sets.
option(ZDK_FEW_INSTRUCTION_SETS "Build kernels for AVX2 and for plain x86-64 only" OFF)
if(ZDK_FEW_INSTRUCTION_SETS)
    add_compile_definitions(HWY_DISABLED_TARGETS=HWY_AVX3_DL|HWY_AVX3|HWY_SSE4|HWY_SSSE3)
endif()

# Warnings are errors for those who work on the library, not for a host or a packager with another compiler.
if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_COMPILE_WARNING_AS_ERROR)
    set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
endif()

# zdk_settings(target): warnings, and results that are the same bits on every machine. Contraction
# into fused multiply-adds would make them depend on the processor. Source paths in exceptions are relative to
# the project.
function(zdk_settings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion
        -ffp-contract=off
        -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
endfunction()

set(ZDK_PRECOMPILED "" CACHE STRING "Folders whose sources read the headers that most of them include once: src, tests")

# zdk_precompile(folder target header): what a target precompiles serves all targets of the folder that come after it, which
# share its compiler options.
function(zdk_precompile folder target header)
    if(NOT folder IN_LIST ZDK_PRECOMPILED)
        return()
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -fpch-preprocess) # shows the precompiled header to ccache
    endif()
    get_property(first GLOBAL PROPERTY ZDK_PRECOMPILED_BY_${folder})
    if(first)
        target_precompile_headers(${target} REUSE_FROM ${first})
    else()
        target_precompile_headers(${target} PRIVATE ${header})
        set_property(GLOBAL PROPERTY ZDK_PRECOMPILED_BY_${folder} ${target})
    endif()
endfunction()

# zdk_harden(target objects): what a library in a long-running process should have at hand against its own mistakes: checked
# copies, guarded stacks and tables of addresses that are read-only once loaded.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fcf-protection ZDK_HAS_BRANCH_PROTECTION) # on x86 alone
function(zdk_harden library objects)
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
        target_compile_options(${objects} PRIVATE
            -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection
            $<$<BOOL:${ZDK_HAS_BRANCH_PROTECTION}>:-fcf-protection>)
    endif()
    target_link_options(${library} PRIVATE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endfunction()
