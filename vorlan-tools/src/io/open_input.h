// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

struct BGZF;

namespace vorlan_tools {

/// Opens a file for reading, plain or compressed with gzip or bgzip, told apart by content; "-" is
/// standard input. A name such as "http://x" means a file, never an address. The caller closes it
/// with bgzf_close(). Throws DataError.
BGZF* open_input(const std::string& name);

/// The same for an open descriptor, which is closed with the file or at a failure; `name` is for
/// messages.
BGZF* open_input(int descriptor, const std::string& name);

/// The next bytes of a file that open_input() has opened, decompressed: `size` of them, or fewer at
/// the end of the file. 0 behind the last one, negative if they cannot be read.
ssize_t read_input(BGZF* file, char* bytes, std::size_t size);

/// The name for messages: "standard input" for "-".
std::string shown_input_name(const std::string& name);

}  // namespace vorlan_tools
