"""The command `show` on CRLs and requests fresh from openssl and certtool."""

import base64
import re
import unittest

from support import oracle
from support.case import ShowTest, data
from support.lists import crl_of, tlv

EC = "ecparam -genkey -noout -name prime256v1"


def run(command, *arguments, octets=b""):
    return oracle.run([*command.split(), *arguments], input=octets).decode()


def octets_of(pem):
    return base64.b64decode("".join(pem.split("-----")[2].split()))


class Objects(ShowTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.ec = cls.key(EC)
        cls.ca = cls.file("ca", cls.certificate("everything", key=EC))
        config = cls.file("cnf", data("lists.cnf").replace("FOLDER", str(cls.folder)).encode())
        for name, content in ("database", data("lists.database")), ("number", "31\n"), ("none", ""):
            cls.file(name, content.encode())
        cls.full, cls.empty = (run(f"openssl ca -gencrl -name {name} -crldays 30 -config", config,
                                   "-cert", cls.ca, "-keyfile", cls.ec).encode()
                               for name in ("full", "empty"))
        cls.request = run("openssl req -new -config", config, "-key", cls.ec).encode()
        cls.spki = octets_of(run("openssl pkey -pubout -in", cls.ec))

    def test_entries_of_openssl(self):
        said = []
        for entry in run("openssl crl -noout -text", octets=self.full).split("Serial Number: ")[1:]:
            time = oracle.time_of_openssl(re.search("Revocation Date: (.*)", entry)[1])
            reason = (re.search(r"Reason Code: \n *(.*)", entry) or ["", ""])[1]
            said.append((entry.split()[0].lower(), time, reason.replace(" ", "").lower()))
        full, empty = oracle.show(["-"], self.full + self.empty)
        self.assertEqual([(e["serial"], e["revocation_date"], e.get("reason", "").lower())
                          for e in full["revoked"]], said)
        self.assertEqual((empty["version"], empty["extensions"], empty["revoked"]), (1, [], []))

    def test_text(self):
        """All of it; openssl tells what is fresh in every object."""
        key = re.findall("..", self.spki.hex()[-130:])
        updates = run("openssl crl -noout -lastupdate -nextupdate", octets=self.full)
        times = [oracle.time_of_openssl(time).replace("T", " ").replace("Z", " UTC")
                 for time in re.findall("Update=(.*)", updates)]
        lines = [":".join(key[i:i + 24]) for i in (0, 24, 48)]
        self.assertEqual(self.run_tool("show", "-", octets=self.full + self.request),
                         (0, data("lists.txt").format(*lines, *times), ""))

    def test_certtool(self):
        objects = run("certtool --generate-crl --load-ca-privkey", self.ec, "--load-ca-certificate",
                      self.ca, "--load-certificate", self.ca, "--template",
                      self.file("crl", b"crl_number = 0x700ffff00f\n"))
        said = run("certtool --crl-info", octets=objects.encode())
        objects += run("certtool --generate-request --load-privkey", self.ec, "--template",
                       self.file("request", b"cn = x\nchallenge_password = 1 2\n"))
        crl, request = oracle.show(["-"], objects.encode())
        self.assertEqual((crl["revoked"][0]["serial"], crl["extensions"][1]["crl_number"],
                          request["attributes"][0]["values"][0]["value"]),
                         (re.search(r"\(hex\): (\w+)", said)[1], "700ffff00f", "1 2"))

    def test_times(self):
        """The library reads no GeneralizedTime after 2106, and a late one into 32 bits only."""
        for identifier, text, expected in (
                (0x17, b"500102030405Z", "1950-01-02T03:04:05Z"),
                (0x17, b"491231235959Z", "2049-12-31T23:59:59Z"),
                (0x18, b"700102030405Z", "1970-01-02T03:04:05Z"),
                (0x18, b"21061231235959Z", "2106-12-31T23:59:59Z"),
                (0x18, b"21070101000000Z", None), (0x17, b"260230000000Z", None)):
            time = tlv(identifier, text)
            status, output, problem = self.run_tool(
                "show", "--format", "json", "-", octets=crl_of(time, tlv(0x30, b"\2\1\1" + time)))
            found = re.findall(r'(?:this_update|revocation_date)": ?"(.*?)"', output)
            self.assertEqual((status, found), (0, [expected] * 2) if expected else (1, []), text)
            self.assertRegex(problem, r"expected a CRL: .* \(10[46]\)\n$" if status else "^$")

    def test_values_in_octet_strings(self):
        """As the library writes them; and values that are not what their attribute should hold."""
        ca = bytes.fromhex("0410300e300c0603551d13040530030101ff")
        rows = ((b"\7", "\4\4密\\".encode(), "密\\"), (b"\7", b"\4\1\0", "#040100"),
                (b"\x0e", ca, {"ca": True}), (b"\x0e", b"\5\0", "#0500"))
        attributes = b"".join(tlv(0x30, bytes.fromhex("06092a864886f70d0109") + number +
                                  tlv(0x31, value)) for number, value, _ in rows)
        for content in (attributes, tlv(0x31, attributes)):
            info = tlv(0x30, b"\2\1\0\x30\0" + self.spki + tlv(0xA0, content))
            (request,) = oracle.show(["-"], tlv(0x30, info + bytes.fromhex("300506032b6570030100")))
            self.assertEqual([a["values"][0]["value"] if "values" in a else a["extensions"][0]
                              ["basic_constraints"] for a in request["attributes"]],
                             [expected for _, _, expected in rows])
            self.assertIn("(106)", request["attributes"][3]["problem"])

    def test_one_file_for_all(self):
        octets = self.small + self.full + self.request.replace(b"CERT", b"NEW CERT") + self.empty
        self.assertEqual([(o["kind"], o["index"]) for o in oracle.show(["-"], octets)],
                         [("certificate", 1), ("crl", 2), ("request", 3), ("crl", 4)])
        lines = self.run_tool("show", "--format", "table", "-", octets=octets)[1].splitlines()
        self.assertRegex(lines[2], r"^\(CRL, 11 revoked\) +名称 +31 .* - +AKI IDP DCI CRLN +4/4$")
        self.assertRegex(lines[3], r"^applicant +\(request\) .* EC P-256 +SAN KU BC SKI .* 11/11$")
        self.assertRegex(lines[5], "^4 certificates, CRLs and requests, 4 decoded; ")

    def test_damaged_octets(self):
        """Every truncation has its line; no changed octet ends the tool by a signal."""
        for pem, noun in ((self.full, "a CRL"), (self.request, "a request")):
            der = octets_of(pem.decode())
            for form, rest in (("cut", lambda i: b""),
                               ("changed", lambda i: bytes([der[i] ^ 0x81]) + der[i + 1:])):
                files = [self.file(form + str(i), der[:i] + rest(i)) for i in range(len(der))]
                status, output, problems = self.run_tool("show", *files)
                shown = len(re.findall("^(?:CRL|Request|Certificate) 1 of ", output, re.M))
                self.assertEqual((status, shown + problems.count("\n"), shown == 0),
                                 (1, len(files), form == "cut"))
            size = f"expected {noun} of {len(der)} octets, found {len(der) - 1}: length fields do"
            self.assertIn(size, self.run_tool("show", self.folder / f"cut{len(der) - 1}")[2])


if __name__ == "__main__":
    unittest.main(verbosity=2)
