"""What the tests of `show` share: certificates fresh from openssl in one folder, and the tool."""

import json
import os
import pathlib
import ssl
import subprocess
import tempfile
import unittest

from support import oracle

DATA = pathlib.Path(os.environ["ZACERT_SOURCE_DIR"], "tests", "data", "show")
ED25519 = "genpkey -algorithm ED25519"


def data(name):
    return (DATA / name).read_text(encoding="utf-8")


class ShowTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.small = cls.certificate("small")

    @classmethod
    def file(cls, name, octets):
        (cls.folder / name).write_bytes(octets)
        return cls.folder / name

    @classmethod
    def key(cls, command=ED25519):
        """One file for every command of openssl that makes a key."""
        path = cls.folder / command
        return path if path.exists() else cls.file(command, oracle.run(["openssl",
                                                                        *command.split()]))

    @classmethod
    def certificate(cls, section, *arguments, key=ED25519):
        """A self-signed certificate in PEM, as the section of the configuration has it."""
        return oracle.run(["openssl", "req", "-x509", "-new", "-config", DATA / "openssl.cnf",
                           "-section", section, "-key", cls.key(key), *arguments])

    @staticmethod
    def der(pem):
        return ssl.PEM_cert_to_DER_cert(pem.decode())

    @staticmethod
    def pem(der):
        return ssl.DER_cert_to_PEM_cert(der).encode()

    @staticmethod
    def run_tool(*arguments, octets=b"", **options):
        """Exit status and both outputs."""
        result = subprocess.run([oracle.TOOL, *map(str, arguments)], input=octets, check=False,
                                **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE} | options)
        return result.returncode, (result.stdout or b"").decode(), result.stderr.decode()

    def agree(self, pem):
        """The one certificate as the tool sees it, after openssl has said the same of it."""
        certificate, = oracle.show(["-"], pem)
        self.assertEqual(oracle.by_tool(certificate), oracle.by_openssl(pem))
        return certificate

    def assert_extensions(self, section, certificate):
        """Those of the other kinds are what openssl and certtool add on their own."""
        expected = json.loads(data("extensions.json"))[section]
        kinds = {extension["oid"] for extension in expected}
        self.assertEqual([e for e in certificate["extensions"] if e["oid"] in kinds], expected)
