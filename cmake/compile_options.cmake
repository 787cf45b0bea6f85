# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors

# One interface target that carries language level, warnings and sanitizers to every target.
add_library(vorlan_compile_options INTERFACE)
target_compile_features(vorlan_compile_options INTERFACE cxx_std_20)

# Scores and perfections must not depend on the machine: no contraction of floating-point operations.
target_compile_options(vorlan_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -ffp-contract=off)

if(VORLAN_WARNINGS_AS_ERRORS)
  target_compile_options(vorlan_compile_options INTERFACE -Werror)
endif()

if(VORLAN_SANITIZE)
  target_compile_options(vorlan_compile_options INTERFACE
    -fsanitize=${VORLAN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vorlan_compile_options INTERFACE -fsanitize=${VORLAN_SANITIZE})
endif()

set(CMAKE_CXX_EXTENSIONS OFF)

# The protections that distributions build their packages with. They need optimised code, and the
# sanitizers bring checks of their own that do not go together with them.
set(hardening_default OFF)
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT VORLAN_SANITIZE)
  set(hardening_default ON)
endif()
option(VORLAN_HARDENING "Protect the stack, check buffer sizes, fix addresses read-only"
       ${hardening_default})

if(VORLAN_HARDENING)
  include(CheckCXXCompilerFlag)
  target_compile_options(vorlan_compile_options INTERFACE
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -Wformat -Werror=format-security)
  # Not every processor family has these two.
  check_cxx_compiler_flag(-fstack-clash-protection VORLAN_HAS_STACK_CLASH_PROTECTION)
  if(VORLAN_HAS_STACK_CLASH_PROTECTION)
    target_compile_options(vorlan_compile_options INTERFACE -fstack-clash-protection)
  endif()
  check_cxx_compiler_flag(-fcf-protection VORLAN_HAS_CF_PROTECTION)
  if(VORLAN_HAS_CF_PROTECTION)
    target_compile_options(vorlan_compile_options INTERFACE -fcf-protection)
  endif()
  target_link_options(vorlan_compile_options INTERFACE
    LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
  # Programs that can be loaded anywhere: needs all code that is linked, also what the tests compare
  # with.
  set(target_type $<TARGET_PROPERTY:TYPE>)
  add_compile_options($<$<NOT:$<STREQUAL:${target_type},SHARED_LIBRARY>>:-fPIE>)
  add_link_options($<$<STREQUAL:${target_type},EXECUTABLE>:-pie>)
endif()
