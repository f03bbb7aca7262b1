"""The command `show` on CRLs and requests fresh from openssl and certtool."""

import base64
import json
import re
import textwrap
import unittest

from support import oracle
from support.case import DATA, ShowTest, data
from support.lists import crl_of, tlv

EC = "ecparam -genkey -noout -name prime256v1"


class Objects(ShowTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.ca = cls.file("ca", cls.certificate("everything", key=EC))
        config = cls.file("cnf", data("lists.cnf").replace("FOLDER", str(cls.folder)).encode())
        cls.file("database", (DATA / "lists.database").read_bytes())
        cls.file("number", b"31\n")
        cls.file("none", b"")
        cls.full, cls.empty = (oracle.run(
            ["openssl", "ca", "-gencrl", "-config", config, "-name", name, "-cert", cls.ca,
             "-keyfile", cls.key(EC), "-crldays", "30"]) for name in ("full", "empty"))
        cls.request = oracle.run(["openssl", "req", "-new", "-config", config,
                                  "-key", cls.key(EC)])
        cls.spki = cls.octets(oracle.run(["openssl", "req", "-noout", "-pubkey"],
                                         input=cls.request))

    @staticmethod
    def octets(pem):
        return base64.b64decode(b"".join(pem.split(b"-----")[2].split()))

    def shown(self, pem):
        (one,), (same,) = oracle.show(["-"], pem), oracle.show(["-"], self.octets(pem))
        self.assertEqual(one, same)
        return one

    def test_crls_of_openssl(self):
        for pem, version, number in ((self.full, 2, 11), (self.empty, 1, 0)):
            text = oracle.run(["openssl", "crl", "-noout", "-text", "-issuer", "-lastupdate",
                               "-nextupdate", *oracle.NAME_OPTIONS], input=pem).decode()
            crl = self.shown(pem)
            times = [oracle.time_of_openssl(time) for time in re.findall(r"Update=(.*)", text)]
            self.assertEqual((crl["version"], crl["num_revoked"], crl["this_update"],
                              crl["next_update"]), (version, number, *times))
            self.assertEqual(oracle.name_of_tool(crl["issuer"]), oracle.name_of_openssl(
                re.search(r"^issuer=(.*\n(?:    .*\n)*)", text, re.M)[1]))
            entries = text.split("    Signature Algorithm")[1].split("    Serial Number: ")[1:]
            for entry, said in zip(crl["revoked"], entries, strict=True):
                reason = re.search(r"Reason Code: \n *(.*)", said)
                time = oracle.time_of_openssl(re.search("Revocation Date: (.*)", said)[1])
                self.assertEqual((entry["serial"], entry["revocation_date"],
                                  entry.get("reason", "").lower()),
                                 (said.split()[0].lower(), time,
                                  reason[1].replace(" ", "").lower() if reason else ""))

    def test_requests_of_openssl(self):
        text = oracle.run(["openssl", "req", "-noout", "-text", "-subject", *oracle.NAME_OPTIONS],
                          input=self.request).decode()
        request = self.shown(self.request)
        self.assertEqual(oracle.name_of_tool(request["subject"]),
                         oracle.name_of_openssl(text.split("subject=")[1]))
        self.assertTrue(self.spki.hex().endswith("00" + request["public_key"]["key"]))
        extensions = oracle.extensions_of_tool(request["attributes"][2]["extensions"])
        asked = textwrap.dedent(text.split("Requested Extensions:\n")[1].split("    Signature")[0])
        self.assertEqual((len(extensions), extensions), (4, oracle.extensions_of_openssl(asked)))

    def test_text(self):
        """All of it; what is fresh in every object comes from its JSON."""
        crl, request = self.shown(self.full), self.shown(self.request)
        key = re.findall("..", request["public_key"]["key"])
        octets = [":".join(key[i:i + 24]) for i in (0, 24, 48)]
        times = [re.sub("[TZ]", lambda m: " " if m[0] == "T" else " UTC", crl[name])
                 for name in ("this_update", "next_update")]
        self.assertEqual(self.run_tool("show", "-", octets=self.full + self.request),
                         (0, data("lists.txt").format(*octets, *times), ""))

    def test_certtool(self):
        crl = oracle.run(["certtool", "--generate-crl", "--load-ca-privkey", self.key(EC),
                          "--load-ca-certificate", self.ca, "--load-certificate", self.ca,
                          "--template", self.file("crl", b"crl_number = 0x1234567890abcdef12\n")])
        text, shown = oracle.run(["certtool", "--crl-info"], input=crl).decode(), self.shown(crl)
        self.assertEqual([shown["revoked"][0]["serial"], shown["extensions"][1]["crl_number"]],
                         [re.search(r"\(hex\): (\w+)", text)[1], "1234567890abcdef12"])
        request = self.shown(oracle.run(
            ["certtool", "--generate-request", "--load-privkey", self.key(EC), "--template",
             self.file("request", b"cn = x\nchallenge_password = 1 2\n")]))
        self.assertEqual(request["attributes"][0]["values"][0]["value"], "1 2")

    def test_times(self):
        """The library reads no GeneralizedTime after 2106, and a late one into 32 bits only."""
        for identifier, text, expected in (
                (0x17, b"500102030405Z", "1950-01-02T03:04:05Z"),
                (0x17, b"491231235959Z", "2049-12-31T23:59:59Z"),
                (0x18, b"700102030405Z", "1970-01-02T03:04:05Z"),
                (0x18, b"21061231235959Z", "2106-12-31T23:59:59Z"), (0x18, b"21070101000000Z", None),
                (0x17, b"261301000000Z", None), (0x17, b"260230000000Z", None)):
            with self.subTest(text):
                time = tlv(identifier, text)
                status, output, problem = self.run_tool(
                    "show", "--format", "json", "-",
                    octets=crl_of(time, tlv(0x30, b"\2\1\1" + time)))
                found = re.findall(r'(?:this_update|revocation_date)": ?"(.*?)"', output)
                self.assertEqual((status, found), (0, [expected] * 2) if expected else (1, []))
                self.assertRegex(problem, r"expected a CRL: .* \(10[46]\)\n$" if status else "^$")

    def test_values_in_octet_strings(self):
        """As the library writes them; and values that are not what their attribute should hold."""
        def attribute(number, value):
            return tlv(0x30, bytes.fromhex("06092a864886f70d0109") + number + tlv(0x31, value))
        ca = bytes.fromhex("0410300e300c0603551d13040530030101ff")
        attributes = (attribute(b"\7", "\4\4密\\".encode()) + attribute(b"\7", b"\4\1\0") +
                      attribute(b"\x0e", ca) + attribute(b"\x0e", b"\5\0"))
        for content in (attributes, tlv(0x31, attributes)):
            info = tlv(0x30, b"\2\1\0\x30\0" + self.spki + tlv(0xA0, content))
            der = tlv(0x30, info + bytes.fromhex("300506032b6570030100"))
            shown = oracle.show(["-"], der)[0]["attributes"]
            self.assertEqual([a["values"][0]["value"] if "values" in a else a["extensions"][0]
                              ["basic_constraints"] for a in shown],
                             ["密\\", "#040100", {"ca": True}, "#0500"])
            self.assertIn("(106)", shown[3]["problem"])

    def test_one_file_for_all(self):
        octets = self.small + self.full + self.request.replace(b"CERT", b"NEW CERT") + self.empty
        _, output, problems = self.run_tool("show", "--format", "json", "-", octets=octets)
        self.assertEqual((problems, [(o["kind"], o["index"]) for o in json.loads(output)]),
                         ("", [("certificate", 1), ("crl", 2), ("request", 3), ("crl", 4)]))
        lines = self.run_tool("show", "--format", "table", "-", octets=octets)[1].splitlines()
        self.assertRegex(lines[2], r"^\(CRL, 11 revoked\) +名称 +31 .* - +AKI IDP DCI CRLN +4/4$")
        self.assertRegex(lines[3], r"^applicant +\(request\) .* EC P-256 +SAN KU BC SKI .* 11/11$")
        self.assertRegex(lines[5], "^4 certificates, CRLs and requests, 4 decoded; ")

    def test_damaged_octets(self):
        """Every truncation has its line; no changed octet ends the tool by a signal."""
        for pem, noun in ((self.full, "a CRL"), (self.request, "a request")):
            der = self.octets(pem)
            for form in ("cut", "changed"):
                files = [self.file(form + str(i), der[:i] + (
                    b"" if form == "cut" else bytes([der[i] ^ 0x81]) + der[i + 1:]))
                    for i in range(len(der))]
                status, output, problems = self.run_tool("show", *files)
                shown = len(re.findall("^(?:CRL|Request|Certificate) 1 of ", output, re.M))
                self.assertEqual((status, shown + problems.count("\n"), shown == 0),
                                 (1, len(files), form == "cut"))
                self.assertIn(f"expected {noun} of {len(der)} octets, found {len(der) - 1}: length "
                              "fields do" if form == "cut" else f"expected {noun}: ", problems)


if __name__ == "__main__":
    unittest.main(verbosity=2)
