#!/usr/bin/env python3
"""How much memory a large content takes: one copy of it where it is detached."""
import os
import subprocess

from support.oracle import TOOL
from support.peers import FOLDER, certificate, file, run

SIZE = 64 * 1024 * 1024
BESIDES = 24 * 1024 * 1024  # the program itself
SIGN = "sign --cert large.pem --key large.key --out signed content"

file("content", bytes(SIZE))
certificate("large", "rsa:2048 -subj /CN=large")
for copies, arguments in ((1, f"{SIGN} --detached"), (4, SIGN),
                          (5, "encrypt --to large.pem --out encrypted content"),
                          (4, "decrypt --key large.key --out decrypted encrypted")):
    with subprocess.Popen([TOOL, "p7", *arguments.split()], cwd=FOLDER) as process:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    assert process.returncode == 0, arguments
    assert usage.ru_maxrss * 1024 < copies * SIZE + BESIDES, (arguments, usage.ru_maxrss)
run("cmp content decrypted")
