"""The command `show` on certificates fresh from openssl and certtool, and on input that is none."""

import json
import os
import re
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

LATIN_NAME = "C = DE\nO = Müller\nCN = été"

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

GENERAL_NAMES_EXPECTED = [
    ("dNSName", "a.example"), ("dNSName", "*.b.example"), ("rfc822Name", "post@c.example"),
    ("uniformResourceIdentifier", "https://d.example/?q=1"), ("iPAddress", "192.0.2.1"),
    ("iPAddress", "2001:db8::1"), ("registeredID", "1.3.6.1.4.1.99999.1"),
    ("directoryName", ["DE", "Verzeichnis"]), ("otherName", "nutzer@e.example"),
]

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

DISTRIBUTION_POINTS = """
[point1]
fullname = URI:http://example.org/1.crl, URI:ldap://example.org/2
reasons = keyCompromise, CACompromise
[point2]
relativename = relative
CRLissuer = dirName:directory
[relative]
CN = list
[directory]
CN = issuer of lists
"""

CERTTOOL_TEMPLATE = """
cn = "certtool"
organization = "Example"
serial = 0x1234567890abcdef1234
dns_name = one.example
dns_name = two.example
ip_address = 2001:db8::2
uri = https://example.org/
ca
path_len = 3
cert_signing_key
crl_signing_key
signing_key
ocsp_signing_key
tls_www_server
crl_dist_points = http://example.org/ca.crl
expiration_days = 700
"""


def value(certificate, member):
    """The member of the first extension that has it."""
    return next(e[member] for e in certificate["extensions"] if member in e)


def general_names(names):
    return [(n["form"], [a["value"] for rdn in n["value"] for a in rdn]
             if n["form"] == "directoryName" else n["value"]) for n in names]


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


class Certificates(ShowTest):
    def test_names(self):
        rows = {
            "UTF8String": dict(name=NAME),
            "BMPString": dict(name=NAME, mask="MASK:0x800"),
            "TeletexString": dict(name=LATIN_NAME, mask="MASK:0x4"),
            "several attributes in one RDN": dict(name="C = DE\nO = a\n+OU = b\n+CN = c"),
            "types without a short name": dict(name="0.1.2.3.4.5 = x\nDC = example\nUID = u"),
            "control characters": dict(name="CN = a\\nb\u0085c\u202ed"),
        }
        for label, row in rows.items():
            with self.subTest(label):
                self.assertTrue(self.agree(self.make.certificate(**row))["subject"])
        self.assertEqual(self.agree(self.make.certificate("-subj", "/"))["subject"], [])

    def test_keys(self):
        rows = {
            "rsa": ("RSA", 2048, None), "rsa-1031": ("RSA", 1031, None),
            "rsa-pss": ("RSA-PSS", 2048, None), "p256": ("EC", 256, "P-256"),
            "p256-explicit": ("EC", 256, "explicit"), "p384": ("EC", 384, "P-384"),
            "p521": ("EC", 521, "P-521"), "secp256k1": ("EC", 256, "secp256k1"),
            "sm2": ("EC", 256, "SM2"), "ed25519": ("Ed25519", 256, None),
            "ed448": ("Ed448", 456, None), "dsa": ("DSA", 1024, None),
        }
        for kind, expected in rows.items():
            with self.subTest(kind):
                key_file = self.make.dsa_key() if kind == "dsa" else None
                pem = self.make.certificate(key=kind, key_file=key_file)
                key = self.agree(pem)["public_key"]
                self.assertEqual((key["algorithm"], key["bits"], key.get("curve")), expected)
                # A SubjectPublicKeyInfo ends with the content of its BIT STRING.
                spki = oracle.run(["openssl", "x509", "-noout", "-pubkey"], input=pem)
                der = oracle.run(["openssl", "pkey", "-pubin", "-outform", "DER"], input=spki)
                self.assertTrue(key["key"] and der.hex().endswith("00" + key["key"]))
                if "modulus" in key:
                    modulus = oracle.run(["openssl", "x509", "-noout", "-modulus"], input=pem)
                    self.assertEqual(modulus.decode().strip().lower(), "modulus=" + key["modulus"])

    def test_serials_and_times(self):
        rows = {
            "zero": ["-set_serial", "0"],
            "high bit": ["-set_serial", "0x80ff"],
            "twenty octets": ["-set_serial", "0x" + "f0" * 20],
            "negative": ["-set_serial", "-129"],
            "negative, high bit": ["-set_serial", "-128"],
            "notAfter beyond 2038": ["-days", "7000"],
            "notAfter beyond 2050": ["-days", "20000"],
        }
        for label, arguments in rows.items():
            with self.subTest(label):
                self.agree(self.make.certificate(*arguments))

    def test_version_1(self):
        certificate = self.agree(self.make.version_1())
        self.assertEqual((certificate["version"], certificate["extensions"]), (1, []))

    def test_certtool(self):
        certificate = self.agree(self.make.by_certtool(CERTTOOL_TEMPLATE))
        self.assertEqual([u["name"] for u in value(certificate, "extended_key_usage")],
                         ["serverAuth", "OCSPSigning"])
        self.assertEqual(general_names(value(certificate, "subject_alt_name")),
                         [("dNSName", "one.example"), ("dNSName", "two.example"),
                          ("uniformResourceIdentifier", "https://example.org/"),
                          ("iPAddress", "2001:db8::2")])

    def test_every_zone_shows_the_same(self):
        shown = [self.show("--format", "json", "-", data=self.small, environment={"TZ": zone})
                 for zone in ("UTC", "Asia/Shanghai", "America/New_York")]
        self.assertEqual(len({result.stdout for result in shown}), 1)


class Extensions(ShowTest):
    def extended(self, extensions, sections=""):
        return self.agree(self.make.certificate(extensions=extensions, sections=sections))

    def test_alternative_names(self):
        certificate = self.extended("subjectAltName = @names\nissuerAltName = @names",
                                    GENERAL_NAMES)
        for member in ("subject_alt_name", "issuer_alt_name"):
            self.assertEqual(general_names(value(certificate, member)), GENERAL_NAMES_EXPECTED)
        other_name = value(certificate, "subject_alt_name")[-1]
        self.assertEqual(other_name["type_id"],
                         {"oid": "1.3.6.1.4.1.311.20.2.3", "name": "userPrincipalName"})

    def test_usage(self):
        certificate = self.extended(
            "keyUsage = critical, digitalSignature, keyAgreement, decipherOnly\n"
            "extendedKeyUsage = serverAuth, OCSPSigning, 1.2.3.4\n"
            "basicConstraints = critical, CA:TRUE, pathlen:300")
        self.assertEqual(value(certificate, "key_usage"),
                         ["digitalSignature", "keyAgreement", "decipherOnly"])
        self.assertEqual([u["name"] for u in value(certificate, "extended_key_usage")],
                         ["serverAuth", "OCSPSigning", "1.2.3.4"])
        self.assertEqual(value(certificate, "basic_constraints"),
                         {"ca": True, "path_length": 300})
        self.assertEqual(value(self.extended("basicConstraints = CA:FALSE"), "basic_constraints"),
                         {"ca": False})

    def test_authority_key_identifier(self):
        certificate = self.extended("subjectKeyIdentifier = hash\n"
                                    "authorityKeyIdentifier = keyid:always, issuer:always")
        authority = value(certificate, "authority_key_identifier")
        self.assertEqual(authority["key_id"], value(certificate, "subject_key_identifier"))
        self.assertEqual(general_names(authority["issuer"]), [("directoryName", ["test"])])
        self.assertEqual(authority["serial"], certificate["serial"])

    def test_policies(self):
        certificate = self.extended(
            "certificatePolicies = 2.5.29.32.0, @policy\npolicyMappings = 1.2.3:1.2.4\n"
            "policyConstraints = requireExplicitPolicy:3, inhibitPolicyMapping:0\n"
            "inhibitAnyPolicy = 2", POLICIES)
        any_policy, own = value(certificate, "certificate_policies")
        self.assertEqual((any_policy["name"], any_policy["qualifiers"]), ("anyPolicy", []))
        cps, notice = own["qualifiers"]
        self.assertEqual(cps["cps"],
                         {"value": "https://example.org/cps", "string_type": "IA5String"})
        self.assertEqual(notice["explicit_text"]["value"], "Hinweis für alle")
        self.assertEqual((notice["organization"]["value"], notice["notice_numbers"]),
                         ("Beispiel", [1, 300]))
        self.assertEqual([(m["issuer_policy"]["oid"], m["subject_policy"]["oid"])
                          for m in value(certificate, "policy_mappings")], [("1.2.3", "1.2.4")])
        self.assertEqual(value(certificate, "policy_constraints"),
                         {"require_explicit_policy": 3, "inhibit_policy_mapping": 0})
        self.assertEqual(value(certificate, "inhibit_any_policy"), 2)

    def test_distribution_points(self):
        lists = "crlDistributionPoints = point1, point2\nfreshestCRL = URI:http://example.org/d"
        certificate = self.extended(lists, DISTRIBUTION_POINTS)
        first, second = value(certificate, "distribution_points")
        self.assertEqual(general_names(first["full_name"]),
                         [("uniformResourceIdentifier", "http://example.org/1.crl"),
                          ("uniformResourceIdentifier", "ldap://example.org/2")])
        self.assertEqual(first["reasons"], ["keyCompromise", "cACompromise"])
        self.assertEqual(second["relative_name"][0]["value"], "list")
        self.assertEqual(general_names(second["crl_issuer"]),
                         [("directoryName", ["issuer of lists"])])
        self.assertEqual([e["name"] for e in certificate["extensions"]][:2],
                         ["cRLDistributionPoints", "freshestCRL"])

    def test_access_and_constraints(self):
        certificate = self.extended(
            "authorityInfoAccess = OCSP;URI:http://o.example, caIssuers;URI:http://c.example\n"
            "nameConstraints = critical, permitted;DNS:example.org, permitted;IP:192.0.2.0/"
            "255.255.255.0, excluded;IP:2001:db8::/ffff:ffff::, excluded;IP:10.0.0.0/255.0.255.0")
        self.assertEqual([(a["method"]["name"], a["location"]["value"])
                          for a in value(certificate, "access_descriptions")],
                         [("ocsp", "http://o.example"), ("caIssuers", "http://c.example")])
        constraints = value(certificate, "name_constraints")
        self.assertEqual(general_names(constraints["permitted"]),
                         [("dNSName", "example.org"), ("iPAddress", "192.0.2.0/24")])
        self.assertEqual(general_names(constraints["excluded"]),
                         [("iPAddress", "2001:db8::/32"), ("iPAddress", "10.0.0.0/255.0.255.0")])

    def test_order_criticality_and_what_is_not_decoded(self):
        certificate = self.shown(self.make.certificate(extensions=(
            "1.2.3.4 = critical, DER:0c0141\nkeyUsage = cRLSign\n"
            "certificatePolicies = DER:300530030601\n1.2.3.4.5 = DER:0500\n"
            "subjectAltName = DER:30020500")))
        seen = [(e["name"], e["critical"], e["decoded"], e.get("hex"))
                for e in certificate["extensions"]][:5]
        self.assertEqual(seen, [("1.2.3.4", True, False, "0c0141"),
                                ("keyUsage", False, True, None),
                                ("certificatePolicies", False, False, "300530030601"),
                                ("1.2.3.4.5", False, False, "0500"),
                                ("subjectAltName", False, False, "30020500")])
        problems = [e.get("problem") for e in certificate["extensions"]][:5]
        self.assertEqual([bool(p) for p in problems], [False, False, True, False, True])


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
            "text": (b"hello\n", "a certificate in DER or PEM: a tag is not the one expected (106)"),
            "other PEM": (self.make.key().read_bytes(),
                          "a PEM block CERTIFICATE, found PRIVATE KEY"),
            "no Base64": (self.small.replace(b"M", b"*", 1),
                          "a certificate: the PEM block is not Base64"),
            "no last line": ("\n".join(block[:-1]).encode(),
                             "a certificate: the PEM block has no last line"),
            "another last line": (self.small.replace(b"END C", b"END X"),
                                  "a certificate: the last line of the PEM block has another label"),
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
