"""The command `show`: forms of input, what is no certificate, and what reaches the terminal."""

import json
import re
import subprocess
import unittest

from support import oracle
from support.case import GENERAL_NAMES, NAME, POLICIES, ShowTest


class Input(ShowTest):
    def test_forms(self):
        other = self.make.certificate(name="CN = other")
        key = self.make.key().read_bytes()
        trusted = oracle.run(["openssl", "x509", "-trustout", "-addtrust", "serverAuth"],
                             input=self.small)
        rows = {
            "DER": (self.small_der, ["small"]),
            "PEM": (self.small, ["small"]),
            "CR LF": (self.small.replace(b"\n", b"\r\n"), ["small"]),
            "no last line end": (self.small.rstrip(), ["small"]),
            "several blocks, text and a key between": (
                b"0 text\n" + self.small + key + b"more\n" + other, ["small", "other"]),
            "X509 CERTIFICATE": (self.small.replace(b"CERT", b"X509 CERT"), ["small"]),
            "TRUSTED CERTIFICATE": (trusted, ["small"]),
        }
        for label, (octets, names) in rows.items():
            with self.subTest(label):
                path = self.make.file("input", octets)
                shown = oracle.show([path])
                self.assertEqual([c["subject"][0][0]["value"] for c in shown], names)
                self.assertEqual(oracle.show(["-"], octets),
                                 [c | {"file": "-"} for c in shown])

    def test_bad_input(self):
        cut, longer = self.small_der[:-1], self.small_der + b"\0"
        size = len(self.small_der)
        block = self.small.decode().splitlines()
        rows = {
            "empty": (b"", "a certificate: the file is empty"),
            "text": (b"hello\n",
                     "a certificate in DER or PEM: a tag is not the one expected (106)"),
            "other PEM": (self.make.key().read_bytes(),
                          "a PEM block CERTIFICATE, found PRIVATE KEY"),
            "no Base64": (self.small.replace(b"M", b"*", 1),
                          "a certificate: the PEM block is not Base64"),
            "no last line": ("\n".join(block[:-1]).encode(),
                             "a certificate: the PEM block has no last line"),
            "another last line": (self.small.replace(b"END C", b"END X"),
                                  "a certificate: the last line of the PEM block has another "
                                  "label"),
            "cut": (cut, f"a certificate of {size} octets, found {size - 1}: "
                         "length fields do not add up (102)"),
            "longer": (longer, f"a certificate of {size} octets, found {size + 1}: "
                               "length fields do not add up (102)"),
            "length of five octets": (b"\x30\x85" + self.small_der,
                                      "a certificate: a length is out of range (101)"),
            "an INTEGER instead": (b"\x30\x03\x02\x01\x05", "a certificate: "),
        }
        for label, (octets, message) in rows.items():
            with self.subTest(label):
                path = self.make.file("bad", octets)
                result = self.show(path)
                self.assertEqual((result.returncode, result.stdout), (1, b""))
                line = result.stderr.decode()
                self.assertEqual(line.count("\n"), 1)
                self.assertTrue(line.startswith(f"zacert: {path}: expected {message}"), line)

    def test_base64(self):
        refused = "the PEM block is not Base64"
        rows = {"MAA=": "", "M AA\t=": "", "MAA": refused, "MAB=": refused, "MA=A": refused,
                "MAA==": refused, "M-AA": refused, "MAA=MAA=": refused, "====": refused}
        for body, message in rows.items():
            with self.subTest(body):
                block = f"-----BEGIN CERTIFICATE-----\n{body}\n-----END CERTIFICATE-----\n"
                result = self.show("-", data=block.encode())
                self.assertEqual(refused in result.stderr.decode(), message == refused)

    def test_unreadable(self):
        missing = self.make.path("missing")
        for path, message in ((missing, "No such file or directory"),
                              (self.make.folder, "Is a directory")):
            result = self.show(path)
            self.assertEqual(result.returncode, 1)
            self.assertEqual(result.stderr.decode(),
                             f"zacert: {path}: expected a certificate: {message}\n")

    def test_above_the_limit(self):
        path = self.make.path("large")
        with open(path, "wb") as large:
            large.truncate(64 * 1024 * 1024 + 1)
        result = self.show(path)
        path.unlink()
        self.assertEqual(result.stderr.decode(), f"zacert: {path}: expected at most 64 MiB\n")
        self.assertEqual(result.returncode, 1)

    def test_the_others_are_still_shown(self):
        good = self.make.file("good", self.small)
        mixed = self.make.file("mixed", self.small + self.small.replace(b"M", b"*", 1) + self.small)
        result = self.show("--format", "json", "missing", good, mixed)
        self.assertEqual(result.returncode, 1)
        self.assertEqual([(c["file"], c["index"]) for c in json.loads(result.stdout)],
                         [(str(good), 1), (str(mixed), 1), (str(mixed), 3)])
        lines = result.stderr.decode().splitlines()
        self.assertEqual(len(lines), 2)
        self.assertEqual(lines[1], f"zacert: {mixed}: block 2: expected a certificate: "
                                   "the PEM block is not Base64")

    def test_damaged_octets(self):
        """Every truncation is refused; no changed octet ends the tool by a signal."""
        certificates = {
            "plain": self.small_der,
            "extensions": self.make.der(self.make.certificate(
                extensions="subjectAltName = @names\ncertificatePolicies = @policy\n"
                           "authorityKeyIdentifier = keyid, issuer:always",
                sections=GENERAL_NAMES + POLICIES)),
        }
        for label, der in certificates.items():
            with self.subTest(label):
                cut = [self.make.file(f"cut{i}", der[:i]) for i in range(len(der))]
                result = self.show(*cut)
                self.assertEqual((result.returncode, result.stdout), (1, b""))
                self.assertEqual(len(result.stderr.splitlines()), len(cut))
                changed = [self.make.file(f"changed{i}", der[:i] + bytes([octet ^ 0x81]) +
                                          der[i + 1:]) for i, octet in enumerate(der)]
                result = self.show(*changed)
                self.assertEqual(result.returncode, 1)
                shown = len(re.findall(rb"^Certificate 1 of ", result.stdout, re.M))
                self.assertEqual(shown + len(result.stderr.splitlines()), len(changed))

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            result = subprocess.run([oracle.TOOL, "show", "-"], input=self.small, stdout=full,
                                    stderr=subprocess.PIPE, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr, b"zacert: standard output: expected to write all of it\n")

    def test_usage_errors(self):
        for arguments in ([], ["show"], ["show", "--format", "xml", "-"], ["peel", "-"]):
            result = subprocess.run([oracle.TOOL, *arguments], capture_output=True, check=False)
            self.assertEqual(result.returncode, 2, arguments)
            self.assertTrue(result.stderr)
        for arguments, text in ((["--help"], "zacert show"), (["show", "--help"], "--format"),
                                (["--version"], "zacert ")):
            self.assertIn(text, oracle.run([oracle.TOOL, *arguments]).decode())


class Text(ShowTest):
    def test_no_control_character_reaches_the_terminal(self):
        name = "CN = a\x1b[31m\x07\u009b31m\u202e\\\\nb"
        pem = self.make.certificate(name=name, extensions="subjectAltName = DNS:a\x1b]0;x")
        for form in ("text", "table", "json"):
            with self.subTest(form):
                output = self.show("--format", form, "-", data=pem).stdout.decode()
                self.assertNotRegex(output, "[\x00-\x09\x0b-\x1f\x7f-\x9f\u202e]")
                escape = r"\u001b[31m" if form == "json" else r"a\1b[31m"
                self.assertIn(escape, output)

    def test_text(self):
        pem = self.make.certificate("-set_serial", "0xabcd", name=NAME, extensions=(
            "subjectAltName = @names\ncertificatePolicies = @policy\nkeyUsage = critical, cRLSign\n"
            "1.2.3.4 = DER:0c0141"), sections=GENERAL_NAMES + POLICIES)
        output = self.show("-", data=pem).stdout.decode()
        for line in ("Serial number:        ab:cd",
                     "Subject:              C=DE, ST=Thüringen, O=Beispiel\\, Gesellschaft \\+ "
                     "Co \\\\ \\\"Zitat\\\", OU=Eins, OU=Zwei, CN=名称",
                     "Public key:           Ed25519, 256 bits",
                     "Key usage (critical)", "iPAddress: 2001:db8::1",
                     "directoryName: C=DE, O=Verzeichnis",
                     "otherName userPrincipalName: nutzer@e.example",
                     "CPS: https://example.org/cps", "Notice of Beispiel: 1 300",
                     "1.2.3.4", "0c:01:41"):
            self.assertRegex(output, rf"(?m)^ +{re.escape(line)}$")

    def test_table(self):
        wide = self.make.certificate(name="CN = " + "名" * 30, extensions=(
            "keyUsage = cRLSign\n1.2.3.4 = DER:0500"))
        result = self.show("--format", "table", "missing", "-", data=self.small + wide)
        lines = result.stdout.decode().splitlines()
        self.assertEqual(len(lines), 4)
        self.assertRegex(lines[1], r"^small +small .* Ed25519 ")
        self.assertRegex(lines[2], r"^名+… .* KU \? .* 2/3$")
        self.assertRegex(lines[-1], r"^3 certificates, 2 decoded; \d+ extensions, \d+ decoded$")
        # A Chinese character takes two columns.
        columns = [len(line) + line.count("名") for line in lines[:-1]]
        self.assertLessEqual(max(columns), 160)


if __name__ == "__main__":
    unittest.main(verbosity=2)
