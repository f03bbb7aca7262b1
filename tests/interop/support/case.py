"""What the tests of `show` share: a folder of fresh certificates and the tool."""

import os
import subprocess
import tempfile
import unittest

from support import make, oracle

NAME = r"""
C = DE
ST = Thüringen
O = Beispiel, Gesellschaft + Co \\ \"Zitat\"
OU = Eins
1.OU = Zwei
CN = 名称
"""

GENERAL_NAMES = """
[names]
DNS.1 = a.example
DNS.2 = *.b.example
email = post@c.example
URI = https://d.example/?q=1
IP.1 = 192.0.2.1
IP.2 = 2001:db8::1
RID = 1.3.6.1.4.1.99999.1
dirName = directory
otherName = 1.3.6.1.4.1.311.20.2.3;UTF8:nutzer@e.example
[directory]
C = DE
O = Verzeichnis
"""

POLICIES = """
[policy]
policyIdentifier = 1.3.6.1.4.1.99999.2
CPS.1 = https://example.org/cps
userNotice.1 = @notice
[notice]
explicitText = UTF8:Hinweis für alle
organization = Beispiel
noticeNumbers = 1, 300
"""


class ShowTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.make = make.Maker(folder.name)
        cls.small = cls.make.certificate(name="CN = small")
        cls.small_der = cls.make.der(cls.small)

    def show(self, *arguments, data=b"", environment=None):
        return subprocess.run([oracle.TOOL, "show", *map(str, arguments)], input=data,
                              capture_output=True, env={**os.environ, **(environment or {})},
                              check=False)

    def shown(self, pem):
        certificates = oracle.show(["-"], pem)
        self.assertEqual(len(certificates), 1)
        return certificates[0]

    def agree(self, pem):
        """What openssl says too; the certificate as the tool sees it."""
        certificate = self.shown(pem)
        self.assertEqual(oracle.differences(oracle.by_openssl(pem), oracle.by_tool(certificate)),
                         [])
        return certificate
