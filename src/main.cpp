// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/run.h"

int main(int argc, char** argv) { return vorlan::run(argc, argv); }
