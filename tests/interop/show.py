"""The command `show` on certificates fresh from openssl and certtool."""

import re
import unittest

from support import oracle
from support.case import GENERAL_NAMES, NAME, POLICIES, ShowTest

LATIN_NAME = "C = DE\nO = Müller\nCN = été"

GENERAL_NAMES_EXPECTED = [
    ("dNSName", "a.example"), ("dNSName", "*.b.example"), ("rfc822Name", "post@c.example"),
    ("uniformResourceIdentifier", "https://d.example/?q=1"), ("iPAddress", "192.0.2.1"),
    ("iPAddress", "2001:db8::1"), ("registeredID", "1.3.6.1.4.1.99999.1"),
    ("directoryName", ["DE", "Verzeichnis"]), ("otherName", "nutzer@e.example"),
]

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

    def test_years(self):
        """The ends of every window of years. Nobody looks at the signature."""
        late = self.make.der(self.make.certificate("-days", "20000"))
        utc_time = re.search(rb"\x17\x0d(\d{12}Z)", late)[1]
        generalized_time = re.search(rb"\x18\x0f(\d{14}Z)", late)[1]
        rows = [(utc_time, year + b"0304050607Z") for year in (b"49", b"50", b"69", b"70", b"99")]
        rows += [(generalized_time, time) for time in (b"19700101000000Z", b"21060207062815Z",
                                                       b"21060207062816Z", b"21061231235959Z")]
        for old, new in rows:
            with self.subTest(new):
                changed = late.replace(old, new)
                certificate = self.shown(self.make.pem(changed))
                self.assertEqual(oracle.differences(oracle.by_openssl(changed, "DER"),
                                                    oracle.by_tool(certificate)), [])

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
            "basicConstraints = critical, CA:TRUE, pathlen:200")
        self.assertEqual(value(certificate, "key_usage"),
                         ["digitalSignature", "keyAgreement", "decipherOnly"])
        self.assertEqual([u["name"] for u in value(certificate, "extended_key_usage")],
                         ["serverAuth", "OCSPSigning", "1.2.3.4"])
        self.assertEqual(value(certificate, "basic_constraints"),
                         {"ca": True, "path_length": 200})
        self.assertEqual(value(self.extended("basicConstraints = CA:FALSE"), "basic_constraints"),
                         {"ca": False})

    def test_object_identifiers(self):
        """The first octets hold two arcs, and arcs have no limit."""
        oids = ["0.39.1", "1.0.1", "1.39.127", "2.0.128", "2.39.1", "2.47.1", "2.48.1", "2.175.1",
                "2.176.1", "2.999.16383", "2.16304.1", "2.25.329800735698586629295641978511506172918"]
        certificate = self.extended("extendedKeyUsage = " + ", ".join(oids))
        self.assertEqual([u["oid"] for u in value(certificate, "extended_key_usage")], oids)

    def test_extension_there_twice(self):
        der = self.make.der(self.make.certificate(
            extensions="subjectAltName = DNS:a.example\nissuerAltName = DNS:b.example"))
        twice = der.replace(b"\x55\x1d\x11", b"\x55\x1d\x12")
        first, second = self.shown(self.make.pem(twice))["extensions"][:2]
        self.assertEqual(general_names(first["issuer_alt_name"]), [("dNSName", "a.example")])
        self.assertEqual((second["name"], second["decoded"]), ("issuerAltName", False))
        self.assertEqual(second["problem"], "the extension is there twice")

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


if __name__ == "__main__":
    unittest.main(verbosity=2)
