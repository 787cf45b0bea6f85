// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

/// Registers the kernels of the engines of the imperfect search.
void add_engine_kernels();
