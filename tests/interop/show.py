"""The command `show` on certificates fresh from openssl and certtool."""

import os
import re
import unittest

from support import oracle
from support.case import DATA, ShowTest, data


class Certificates(ShowTest):
    def test_names(self):
        for section in ("utf8", "bmp", "teletex", "several_in_one_rdn", "rare_types"):
            with self.subTest(section):
                self.agree(self.certificate(section))
        control = self.certificate("small", "-subj", "/CN=a\nb\x85c\u202ed")
        self.assertEqual(self.agree(control)["subject"][0][0]["value"], "a\nb\x85c\u202ed")
        self.assertEqual(self.agree(self.certificate("small", "-subj", "/"))["subject"], [])

    def test_keys(self):
        rows = {
            "genrsa 2048": ("RSA", 2048, None),
            "genrsa 1031": ("RSA", 1031, None),
            "genpkey -algorithm RSA-PSS": ("RSA-PSS", 2048, None),
            "ecparam -genkey -noout -name prime256v1": ("EC", 256, "P-256"),
            "ecparam -genkey -noout -name prime256v1 -param_enc explicit": ("EC", 256, "explicit"),
            "ecparam -genkey -noout -name secp384r1": ("EC", 384, "P-384"),
            "ecparam -genkey -noout -name secp521r1": ("EC", 521, "P-521"),
            "ecparam -genkey -noout -name secp256k1": ("EC", 256, "secp256k1"),
            "ecparam -genkey -noout -name brainpoolP320r1": ("EC", 320, "1.3.36.3.3.2.8.1.1.9"),
            "ecparam -genkey -noout -name SM2": ("EC", 256, "SM2"),
            "genpkey -algorithm ED25519": ("Ed25519", 256, None),
            "genpkey -algorithm ED448": ("Ed448", 456, None),
            "dsaparam -genkey -noout 1024": ("DSA", 1024, None),
        }
        for command, expected in rows.items():
            with self.subTest(command):
                pem = self.certificate("small", key=command)
                certificate = self.agree(pem)
                key = certificate["public_key"]
                self.assertEqual((key["algorithm"], key["bits"], key.get("curve")), expected)
                # SubjectPublicKeyInfo and certificate end with the content of a BIT STRING.
                spki = oracle.run(["openssl", "x509", "-noout", "-pubkey"], input=pem)
                der = oracle.run(["openssl", "pkey", "-pubin", "-outform", "DER"], input=spki)
                for octets, end in (der, key["key"]), (self.der(pem), certificate["signature"]):
                    self.assertTrue(end and octets.hex().endswith("00" + end))
                if "modulus" in key:
                    modulus = oracle.run(["openssl", "x509", "-noout", "-modulus"], input=pem)
                    self.assertEqual(modulus.decode().strip().lower(), "modulus=" + key["modulus"])

    def test_serials_and_times(self):
        for arguments in (["-set_serial", "0"], ["-set_serial", "0x80ff"],
                          ["-set_serial", "0x" + "f0" * 20], ["-set_serial", "-129"],
                          ["-set_serial", "-128"], ["-set_serial", "-256"],
                          ["-days", "7000"], ["-days", "20000"]):
            with self.subTest(arguments):
                self.agree(self.certificate("small", *arguments))

    def test_years(self):
        """The ends of every window of years. Nobody looks at the signature."""
        late = self.der(self.certificate("small", "-days", "20000"))
        utc_time = re.search(rb"\x17\x0d(\d{12}Z)", late)[1]
        generalized_time = re.search(rb"\x18\x0f(\d{14}Z)", late)[1]
        rows = [(utc_time, year + b"0304050607Z") for year in (b"49", b"50", b"69", b"70", b"99")]
        rows += [(generalized_time, time) for time in (b"19700101000000Z", b"21060207062815Z",
                                                       b"21060207062816Z", b"21061231235959Z")]
        for old, new in rows:
            with self.subTest(new):
                self.agree(self.pem(late.replace(old, new)))

    def test_version_1(self):
        # Made beforehand: openssl from 3.4 on adds extensions to every certificate of its own.
        certificate = self.agree(self.pem((DATA.parent / "certs/rsa_v1.der").read_bytes()))
        self.assertEqual((certificate["version"], certificate["extensions"]), (1, []))

    def test_issued_by_another(self):
        ca = self.file("ca", self.certificate("everything"))
        self.agree(self.certificate("issued", "-CA", ca, "-CAkey", self.key()))

    def test_extensions(self):
        for section in ("everything", "not_a_ca", "object_identifiers"):
            with self.subTest(section):
                pem = self.certificate(section, "-set_serial", "0xabcd")
                self.assert_extensions(section, self.agree(pem))
        self.assert_extensions("certtool", self.agree(oracle.run(
            ["certtool", "--generate-self-signed", "--template", DATA / "certtool.cfg",
             "--load-privkey", self.key("ecparam -genkey -noout -name prime256v1")])))

    def test_what_is_not_decoded(self):
        twice = self.der(self.certificate("twice")).replace(b"\x55\x1d\x11", b"\x55\x1d\x12")
        for section, pem in (("not_decoded", self.certificate("not_decoded")),
                             ("twice", self.pem(twice))):
            with self.subTest(section):
                certificate, = oracle.show(["-"], pem)
                self.assert_extensions(section, certificate)

    def test_every_zone_shows_the_same(self):
        shown = {self.run_tool("show", "-", octets=self.small, env=os.environ | {"TZ": zone})
                 for zone in ("UTC", "Asia/Shanghai", "America/New_York")}
        self.assertEqual(len(shown), 1)


class Text(ShowTest):
    def test_text(self):
        """All of it; what is fresh in every certificate comes from its JSON."""
        pem = self.certificate("everything", "-set_serial", "0xabcd")
        certificate, = oracle.show(["-"], pem)
        times = {name: re.sub("[TZ]", lambda m: " " if m[0] == "T" else " UTC", time)
                 for name, time in certificate["validity"].items()}
        # Thirty-two octets of key and sixty-four of signature, twenty-four in a line.
        lines = [":".join(re.findall("..", octets[at:at + 48])) + ":" * (at + 48 < len(octets))
                 for octets in (certificate["public_key"]["key"], certificate["signature"])
                 for at in range(0, len(octets), 48)]
        self.assertEqual(self.run_tool("show", "-", octets=pem),
                         (0, data("everything.txt").format(*lines, **times), ""))

    def test_table(self):
        wide = self.certificate("wide")
        status, output, _ = self.run_tool("show", "--format", "table", "missing", "-",
                                          octets=self.small + wide)
        lines = output.splitlines()
        self.assertEqual((status, len(lines)), (1, 4))
        self.assertRegex(lines[0], r"^SUBJECT +ISSUER +SERIAL +NOT BEFORE +NOT AFTER +KEY +EXT")
        self.assertRegex(lines[1], r"^small +small +[0-9a-f]+ +\S{10} +\S{10} +Ed25519 ")
        self.assertRegex(lines[2], r"^名+… .* KU \? .* 2/3$")
        self.assertRegex(lines[3], r"^3 certificates, 2 decoded; \d+ extensions, \d+ decoded$")
        # A Chinese character takes two columns.
        self.assertLessEqual(max(len(line) + line.count("名") for line in lines[:-1]), 160)

    def test_no_control_character_reaches_the_terminal(self):
        pem = self.certificate("small", "-subj", "/CN=a\x1b[31m\x07\u009b31m\u202e\\\\nb",
                               "-addext", "subjectAltName = DNS:a\x1b]0;x")
        for form in ("text", "table", "json"):
            with self.subTest(form):
                _, output, _ = self.run_tool("show", "--format", form, "-", octets=pem)
                self.assertNotRegex(output, "[\x00-\x09\x0b-\x1f\x7f-\x9f\u202e]")
                self.assertIn(r"\u001b[31m" if form == "json" else r"a\1b[31m", output)


if __name__ == "__main__":
    unittest.main(verbosity=2)
