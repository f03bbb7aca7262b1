"""The command `show`: forms of input, and what is none of the objects it knows."""

import json
import re
import unittest

from support import oracle
from support.case import DATA, ShowTest


class Input(ShowTest):
    def test_forms(self):
        other = self.certificate("other")
        trusted = oracle.run(["openssl", "x509", "-trustout", "-addtrust", "serverAuth"],
                             input=self.small)
        rows = {
            "DER": (self.der(self.small), ["small"]),
            "CR LF": (self.small.replace(b"\n", b"\r\n"), ["small"]),
            "no last line end": (self.small.rstrip(), ["small"]),
            "several blocks, text and a key between": (
                b"0 text\n" + self.small + self.key().read_bytes() + b"more\n" + other,
                ["small", "other"]),
            "X509 CERTIFICATE": (self.small.replace(b"CERT", b"X509 CERT"), ["small"]),
            "TRUSTED CERTIFICATE": (trusted, ["small"]),
        }
        for label, (octets, names) in rows.items():
            with self.subTest(label):
                path = self.file("input", octets)
                shown = oracle.show([path])
                self.assertEqual([(c["file"], c["index"], c["subject"][0][0]["value"])
                                  for c in shown],
                                 [(str(path), i, name) for i, name in enumerate(names, 1)])
                self.assertEqual(oracle.show(["-"], octets), [c | {"file": "-"} for c in shown])

    def test_bad_input(self):
        der, pem = self.der(self.small), self.small
        size = len(der)
        any_object = "a certificate, CRL, request, PKCS#7 message or OCSP message"
        pfx = (any_object + ', found a PKCS#12 file: "zacert pfx show" shows it, '
               '"zacert pfx open" takes out what is inside')
        with open(self.folder / "large", "wb") as large:
            large.truncate(256 * 1024 * 1024 + 1)
        rows = [
            (b"", f"{any_object}: the file is empty"),
            (b"hello\n", f"{any_object} in DER or PEM: a tag is not the one expected (106)"),
            (self.key().read_bytes(), "a PEM block CERTIFICATE, X509 CRL, CERTIFICATE REQUEST, "
                                      "PKCS7, CMS, OCSP REQUEST or OCSP RESPONSE, "
                                      "found PRIVATE KEY"),
            (pem.replace(b"M", b"*", 1), "a certificate: the PEM block is not Base64"),
            (pem[:pem.index(b"-----END")], "a certificate: the PEM block has no last line"),
            (pem.replace(b"END C", b"END X"),
             "a certificate: the last line of the PEM block has another label"),
            (der[:-1], f"a certificate of {size} octets, found {size - 1}: "
                       "length fields do not add up (102)"),
            (der + b"\0", f"a certificate of {size} octets, found {size + 1}: "
                          "length fields do not add up (102)"),
            (b"\x30\x85" + der, f"{any_object}: a length is out of range (101)"),
            (b"\x30\x03\x02\x01\x05",
             f"{any_object}: an element is missing or not of the expected kind (108)"),
            ((DATA.parent / "pkcs12/openssl_legacy.p12").read_bytes(), pfx),
            ((DATA.parent / "pkcs12/pk12util_3des_sha1.p12").read_bytes(), pfx),
            ("missing", f"{any_object}: No such file or directory"),
            (".", f"{any_object}: Is a directory"),
            ("large", "at most 256 MiB"),
        ]
        for content, message in rows:
            with self.subTest(message):
                path = (self.folder / content if isinstance(content, str)
                        else self.file("bad", content))
                self.assertEqual(self.run_tool("show", path),
                                 (1, "", f"zacert: {path}: expected {message}\n"))

    def test_base64(self):
        rows = {"MAA=": False, "M AA\t=": False, "MAA": True, "MAB=": True, "MA=A": True,
                "MAA==": True, "M-AA": True, "MAA=MAA=": True, "====": True}
        for body, refused in rows.items():
            with self.subTest(body):
                block = f"-----BEGIN CERTIFICATE-----\n{body}\n-----END CERTIFICATE-----\n"
                _, _, problem = self.run_tool("show", "-", octets=block.encode())
                self.assertEqual("the PEM block is not Base64" in problem, refused)

    def test_the_others_are_still_shown(self):
        good = self.file("good", self.small)
        mixed = self.file("mixed", self.small + self.small.replace(b"M", b"*", 1) + self.small)
        status, output, problems = self.run_tool("show", "--format", "json", "none", good, mixed)
        self.assertEqual([(c["file"], c["index"]) for c in json.loads(output)],
                         [(str(good), 1), (str(mixed), 1), (str(mixed), 3)])
        self.assertEqual((status, problems.splitlines()),
                         (1, ["zacert: none: expected a certificate, CRL, request, PKCS#7 message or "
                              "OCSP message: No such file or directory",
                              f"zacert: {mixed}: block 2: expected a certificate: "
                              "the PEM block is not Base64"]))

    def test_damaged_octets(self):
        """Every truncation is refused; no changed octet ends the tool by a signal."""
        der = self.der(self.certificate("everything"))
        cut = [self.file(f"cut{i}", der[:i]) for i in range(len(der))]
        status, output, problems = self.run_tool("show", *cut)
        self.assertEqual((status, output, problems.count("\n")), (1, "", len(cut)))
        changed = [self.file(f"changed{i}", der[:i] + bytes([octet ^ 0x81]) + der[i + 1:])
                   for i, octet in enumerate(der)]
        status, output, problems = self.run_tool("show", *changed)
        shown = len(re.findall(r"^Certificate 1 of ", output, re.M))
        self.assertEqual((status, shown + problems.count("\n")), (1, len(changed)))

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            self.assertEqual(self.run_tool("show", "-", octets=self.small, stdout=full),
                             (1, "", "zacert: standard output: expected to write all of it\n"))

    def test_usage(self):
        for arguments in ([], ["show"], ["show", "--format", "xml", "-"], ["peel", "-"]):
            status, output, problem = self.run_tool(*arguments)
            self.assertEqual((status, output, bool(problem)), (2, "", True), arguments)
        for arguments, text in ((["--help"], "zacert show"), (["show", "--help"], "--format"),
                                (["--version"], "zacert ")):
            self.assertIn(text, oracle.run([oracle.TOOL, *arguments]).decode())


if __name__ == "__main__":
    unittest.main(verbosity=2)
