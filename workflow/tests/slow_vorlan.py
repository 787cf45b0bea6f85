#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""vorlan that gets its piece a little at a time, so that there is a middle in which something can go wrong."""

import os
import subprocess
import sys
import time

STEPS = 20
SECONDS = 4

vorlan = os.environ["VORLAN_BINARY"]
if "/dev/stdin" not in sys.argv:
    os.execv(vorlan, [vorlan, *sys.argv[1:]])
text = sys.stdin.buffer.read()
size = len(text) // STEPS + 1
with subprocess.Popen([vorlan, *sys.argv[1:]], stdin=subprocess.PIPE) as process:
    try:
        for begin in range(0, len(text), size):
            process.stdin.write(text[begin:begin + size])
            process.stdin.flush()
            time.sleep(SECONDS / STEPS)
        process.stdin.close()
    except BrokenPipeError:
        pass
    status = process.wait()
sys.exit(status if status >= 0 else 128 - status)
