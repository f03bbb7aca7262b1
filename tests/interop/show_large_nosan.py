"""The command `show` on a CRL of many entries: one after the other, in little memory."""

import multiprocessing
import os
import subprocess
import unittest

from support import oracle
from support.case import ShowTest
from support.lists import crl_of, tlv

COUNT = 1000000
TIME = tlv(0x17, b"260102030405Z")


def write_crl(path):
    entry = b"\2\x10\1%015d" + TIME + bytes.fromhex("300c300a0603551d1504030a0101")
    path.write_bytes(crl_of(TIME, b"".join(tlv(0x30, entry % i) for i in range(COUNT))))


def size_of(log):
    return os.path.getsize(log) if os.path.exists(log) else 0


class Large(ShowTest):
    def test_memory_and_trace(self):
        path, log = self.folder / "large", os.environ["ZACERT_LOG"]
        # A program's peak begins with that of the process that starts it, which must stay small.
        maker = multiprocessing.get_context("fork").Process(target=write_crl, args=(path,))
        maker.start()
        maker.join()
        # The file, one copy in the library, and the tool with its libraries.
        most = 2 * path.stat().st_size + 16 * 1024 * 1024
        for form, start in (("json", b'      {"serial":"013'), ("text", b"        01:3")):
            traced = size_of(log)
            with subprocess.Popen([oracle.TOOL, "show", "--format", form, path],
                                  stdout=subprocess.PIPE) as tool:
                shown = sum(line.startswith(start) for line in tool.stdout)
                _, tool.returncode, usage = os.wait4(tool.pid, 0)
            self.assertEqual((tool.returncode, shown), (0, COUNT))
            self.assertLess(usage.ru_maxrss * 1024, most)
            self.assertLess(size_of(log) - traced, 100000)


if __name__ == "__main__":
    unittest.main(verbosity=2)
