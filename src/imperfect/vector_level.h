// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace vorlan {

#ifdef VORLAN_X86_KERNELS
/// Whether this processor runs the kernels that are compiled for AVX2, or for AVX-512; see
/// cmake/vector_kernels.cmake for what each is compiled with.
inline bool runs_avx2() { return __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("avx2"); }
inline bool runs_avx512() {
  return runs_avx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw");
}
#endif

/// Frees what `allocate_registers` has allocated.
struct FreeRegisters {
  void operator()(std::byte* memory) const;
};
using RegisterMemory = std::unique_ptr<std::byte[], FreeRegisters>;

/// The alignment of the widest register, which no container of the library guarantees.
inline constexpr std::align_val_t kRegisterAlignment{64};

/// Memory for vector registers. Throws std::bad_alloc.
inline RegisterMemory allocate_registers(std::size_t bytes) {
  return RegisterMemory(new (kRegisterAlignment) std::byte[bytes]);
}

inline void FreeRegisters::operator()(std::byte* memory) const {
  ::operator delete[](memory, kRegisterAlignment);
}

}  // namespace vorlan
