// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/command_line.h"

int main(int argc, char** argv) { return vorlan_tools::run_command_line(argc, argv); }
