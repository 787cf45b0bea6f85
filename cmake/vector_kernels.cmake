# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors

# g++ copies values that are wider than a register in pieces of 16 bytes unless told otherwise, and a
# wider load right behind such stores has to wait for all of them: the kernels for AVX2 took two to
# three times as long, longer than the portable ones. clang++ does not need the flags or know them.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag("-mavx2 -mmove-max=256 -mstore-max=256" VORLAN_HAS_MOVE_MAX)

# Adds the sources to TARGET once for each instruction set that the architecture has. Each copy
# defines its functions in the namespace VORLAN_FILTER_LEVEL; which one runs is chosen at run time.
function(vorlan_add_vector_kernels target)
  set(levels portable)
  if(NOT VORLAN_PORTABLE_ONLY AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
    list(APPEND levels avx2 avx512)
    target_compile_definitions(${target} PRIVATE VORLAN_X86_KERNELS)
  endif()
  set(flags_portable "")
  set(flags_avx2 -mavx2 -mbmi2)
  if(VORLAN_HAS_MOVE_MAX)
    list(APPEND flags_avx2 -mmove-max=256 -mstore-max=256)
  endif()
  set(flags_avx512 -mavx512f -mavx512bw -mbmi2)
  foreach(level IN LISTS levels)
    set(object ${target}_kernel_${level})
    add_library(${object} OBJECT ${ARGN})
    target_include_directories(${object} PRIVATE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${object} PRIVATE vorlan_compile_options)
    target_compile_definitions(${object} PRIVATE VORLAN_FILTER_LEVEL=${level})
    target_compile_options(${object} PRIVATE ${flags_${level}} -Wno-psabi)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${object}>)
  endforeach()
endfunction()
