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
