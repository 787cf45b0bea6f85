// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

/// The version, as the banner, the report header and --version show it.
#define VORLAN_VERSION "3.3.10"
