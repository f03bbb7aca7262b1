"""A whole PKI through the tool, checked with openssl and certtool."""

import hashlib
import os
import pathlib
import subprocess
import tempfile
import unittest

from support.oracle import TOOL, run
from support.token import make_token, uri

VERIFY = ["verify", "--ca", "root.pem", "--intermediate", "ca.pem"]
SM2_ID = ["-vfyopt", "distid:1234567812345678"]
NAMES = "--dns a.example.org --dns b.example.org --email a@example.org --ip ::1 --uri u:a".split()
CONTENT = ("--crl-url http://crl --ocsp-url http://ocsp --policy 1.2.3.4 --identity passport=E1 "
           "--identity officer-card=军1").split()
SHOWN = ["OU=张三, 北京", "DNS:a.example.org, DNS:b.example.org, email:a@example.org, IP Address:"
         "0:0:0:0:0:0:0:1, URI:u:a", "OCSP - URI:http://ocsp", "Policy: 1.2.3.4", "URI:http://crl"]


class Pki(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        for key, kind in (("root", "rsa-2048"), ("ca", "p256"), ("rsa", "rsa-2048"),
                          ("p256", "p256"), ("sm2", "sm2"), ("sm2ca", "sm2")):
            cls.good("key", "new", "--type", kind, "--out", f"{key}.key")
        cls.good(*cls.self_signed("root", "C=CN,O=示例,CN=根"))
        cls.good(*cls.self_signed("sm2ca", "C=CN,O=示例,CN=国密根"))
        cls.good(*cls.request("ca", "C=CN,O=示例,CN=中级"))
        cls.good(*cls.issue("ca", "ca", "--path-length", "0", ca="root"))
        for user, profile in ("rsa", "server"), ("p256", "client"), ("sm2", "email"):
            cls.good(*cls.request(user, f"C=CN,O=R & D,OU=张三\\, 北京,CN={user}", *NAMES))
            cls.good(*cls.issue(user, profile, *CONTENT))

    @classmethod
    def tool(cls, *arguments, **options):
        return subprocess.run([TOOL, *map(str, arguments)], cwd=cls.folder, capture_output=True,
                              check=False, text=True, **options)

    @classmethod
    def good(cls, *arguments, **options):
        result = cls.tool(*arguments, **options)
        assert result.returncode == 0, (arguments, result)
        return result.stdout

    @staticmethod
    def self_signed(key, subject, *more, out=None):
        return ["cert", "issue", "--self", "--subject", subject, "--key", f"{key}.key", "--profile",
                "ca", "--out", out or f"{key}.pem", *more]

    @staticmethod
    def request(key, subject, *more, out=None):
        return ["request", "new", "--key", f"{key}.key", "--subject", subject, "--out",
                out or f"{key}.csr", *more]

    @staticmethod
    def issue(name, profile, *more, ca="ca", key=None, out=None):
        return ["cert", "issue", "--request", f"{name}.csr", "--ca", f"{ca}.pem", "--ca-key",
                f"{key or ca}.key", "--profile", profile, "--out", out or f"{name}.pem", *more]

    def bad(self, expected, *arguments, status=1, **options):
        """Refused in one line, or by the check that says so, and without a file."""
        result = self.tool(*arguments, **options)
        self.assertEqual(result.returncode, status, result)
        self.assertIn(expected, result.stdout + result.stderr)
        if status == 1 and not result.stdout:
            self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertEqual(list(self.folder.glob("none*")), [])

    def openssl(self, *arguments):
        return run(["openssl", *arguments], cwd=self.folder).decode()

    def serial(self, name):
        return self.openssl("x509", "-in", f"{name}.pem", "-noout", "-serial").strip()[7:]

    def file(self, name, content):
        (self.folder / name).write_bytes(content.encode() if isinstance(content, str) else content)
        return name

    def test_certificates(self):
        self.openssl("verify", "-x509_strict", "-CAfile", "root.pem", "root.pem", "ca.pem")
        issuers = (self.folder / "ca.pem").read_bytes() + (self.folder / "root.pem").read_bytes()
        for user, theirs, ours in (("rsa", "sslserver", "server"), ("p256", "sslclient", "client"),
                                   ("sm2", "smimesign", "email")):
            self.openssl("verify", "-purpose", theirs, "-untrusted", "ca.pem", "-CAfile",
                         "root.pem", f"{user}.pem")
            pem = (self.folder / f"{user}.pem").read_bytes()
            if user != "sm2":  # certtool does not know its curve
                run(["certtool", "--verify-chain"], input=pem + issuers)
            text = self.openssl("x509", "-in", f"{user}.pem", "-noout", "-text", "-nameopt", "utf8")
            self.assertEqual([expected for expected in SHOWN if expected not in text], [])
            self.assertRegex(self.serial(user), "^(0[1-9A-F]|[1-7].)[0-9A-F]{30}$")
            self.good(*VERIFY, "--purpose", ours, f"{user}.pem")
        self.good(*self.issue("sm2", "ocsp", "--serial", "F0:01", ca="sm2ca", out="ocsp.pem"))
        self.openssl("verify", *SM2_ID, "-CAfile", "sm2ca.pem", "ocsp.pem")
        self.good("verify", "--ca", "sm2ca.pem", "--purpose", "ocsp", "ocsp.pem")
        self.assertEqual(self.serial("ocsp"), "F001")

    def test_requests(self):
        for user, options in ("rsa", []), ("p256", []), ("sm2", SM2_ID):
            text = self.openssl("req", "-in", f"{user}.csr", "-verify", "-text", *options)
            self.assertIn(SHOWN[1], text)
            self.good("verify", f"{user}.csr")
        self.openssl("req", "-new", "-key", "p256.key", "-subj", "/CN=foreign", "-addext",
                     "subjectAltName=DNS:f.example.org", "-out", "foreign.csr")
        self.good(*self.issue("foreign", "server", *CONTENT))
        self.assertRegex(self.good("show", "foreign.pem"), "(?s)card number: 军1.*E1.*f.example.org")
        der = run(["openssl", "req", "-in", self.folder / "rsa.csr", "-outform", "DER"])
        self.file("damaged.csr", der[:60] + bytes([der[60] ^ 1]) + der[61:])
        self.bad("signature", "verify", "damaged.csr")
        self.bad("not signed by its own", *self.issue("damaged", "server", out="none"))

    def test_revocation(self):
        make = ["crl", "make", "--ca", "ca.pem", "--ca-key", "ca.key", "--out"]
        self.good(*make, "1.crl", "--revoke", "0a:0b,2024-01-31,superseded", "--number", "7")
        self.good(*make, "2.crl", "--previous", "1.crl", "--revoke-cert", "rsa.pem", "--reason",
                  "keyCompromise")
        text = self.openssl("crl", "-in", "2.crl", "-CAfile", "ca.pem", "-noout", "-text")
        self.assertRegex(text, r"(?s)CRL Number:\s+8\n.*0A0B.*Jan 31 00:00:00 2024.*Superseded.*"
                         r"Key Compromise")
        run(["certtool", "--verify-crl", "--load-ca-certificate", self.folder / "ca.pem",
             "--infile", self.folder / "2.crl"])
        self.good(*VERIFY, "--crl", "1.crl", "rsa.pem", "p256.pem", "1.crl")
        self.bad("keyCompromise", *VERIFY, "--crl", "2.crl", "rsa.pem")
        self.bad("replaced", *VERIFY, "--crl", "1.crl", "--at", "2027-06-01", "p256.pem")
        self.bad("no CRL", *VERIFY, "--crl", "1.crl", "ca.pem")  # of the root
        self.good(*make, "d.crl", "--delta", "8", "--revoke-cert", "p256.pem", "--revoke",
                  f"{self.serial('rsa')},,removeFromCRL")
        self.bad("revoked at", *VERIFY, "--crl", "2.crl", "--crl", "d.crl", "p256.pem")
        self.good(*VERIFY, "--crl", "2.crl", "--crl", "d.crl", "rsa.pem")
        self.bad("line 2", *make, "none", "--list", self.file("list", "0A\nxyz\n"))
        self.bad("not one of this CA", *make, "none", "--revoke-cert", "ca.pem")

    def test_refusals(self):
        self.good(*self.self_signed("root", "CN=old", "--not-before", "2020-01-01", "--not-after",
                                    "2021-01-01", out="old.pem"))
        self.openssl("req", "-x509", "-key", "root.key", "-subj", "/CN=nosign", "-addext",
                     "keyUsage=digitalSignature", "-out", "nosign.pem")
        for expected, profile, ca, key in (
                ("not a CA's", "server", "rsa", "rsa"), ("expired", "server", "old", "root"),
                ("not that of the CA", "server", "root", "rsa"), ("no CA below", "ca", "ca", "ca"),
                ("lacks keyCertSign", "server", "nosign", "root")):
            self.bad(expected, *self.issue("rsa", profile, ca=ca, key=key, out="none"))
        self.bad("--self", "cert", "issue", "--profile", "server", "--key", "rsa.key", status=2)
        for subject in "CN", "CN=", "XX=a", "C=CHN", "CN=a+OU=b", "":
            self.bad("expected", *self.request("rsa", subject, out="none"))
        capped = self.tool(*self.self_signed("rsa", "CN=late", "--days", "9999", out="late.pem"))
        self.assertRegex(capped.stderr, r"\A.*capped at 2038-01-18 23:59:59.*\n\Z")

    def test_what_is_not_good(self):
        self.bad("no certificate of its issuer", "verify", "--ca", "root.pem", "rsa.pem")
        self.bad("expired", *VERIFY, "--at", "2037-12-31", "rsa.pem")
        self.bad("begins", *VERIFY, "--at", "2020-01-01", "rsa.pem")
        self.bad("may not be used", *VERIFY, "--purpose", "client", "rsa.pem")
        self.bad("required", "verify", "rsa.pem", status=2)
        # Issued by openssl, which asks no questions.
        self.file("ext", "1.2.3.4=critical,DER:0500")
        for expected, options in (
                ("lacks keyCertSign", ["-addext", "keyUsage=digitalSignature"]),
                ("deny it", ["-addext", "basicConstraints=critical,CA:false"]), ("1.2.3.4", []),
                ("libcrypto", ["-newkey", "rsa:3072"]),
                ("libcrypto", ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-384"])):
            key = "new.key" if "-newkey" in options else "root.key"
            self.openssl("req", "-x509", "-subj", "/CN=other", "-out", "other.pem", "-noenc",
                         "-keyout" if "-newkey" in options else "-key", key, *options)
            self.openssl("x509", "-req", "-in", "rsa.csr", "-CA", "other.pem", "-CAkey", key,
                         "-out", "below.pem", *([] if options else ["-extfile", "ext"]))
            if expected == "libcrypto":
                self.assertIn(expected, self.good("verify", "--ca", "other.pem", "below.pem"))
            else:
                self.bad(expected, "verify", "--ca", "other.pem", "below.pem")

    def test_damage(self):
        self.good(*self.self_signed("p256", "CN=a", "--der", out="small.pem"))
        der = (self.folder / "small.pem").read_bytes()
        for at in range(0, len(der), 7):
            self.file("bad", der[:at] + bytes([der[at] ^ 1]) + der[at + 1:])
            self.assertEqual(self.tool("verify", "--ca", "small.pem", "bad").returncode, 1, at)
        # The CA's own signature of a digest with octets behind it, as forgers make without the key.
        root = run(["openssl", "x509", "-in", self.folder / "root.pem", "-outform", "DER"])
        digest = hashlib.sha256(root[4:-276]).digest()
        info = bytes.fromhex("3031300d060960864801650304020105000420") + digest + bytes(9)
        signature = run(["openssl", "pkeyutl", "-sign", "-inkey", self.folder / "root.key"],
                        input=info)
        self.bad("octets behind", "verify", "--ca", "root.pem",
                 self.file("forged", root[:-256] + signature))
        for octets in b"", der[:100], b"text", der + der:
            self.file("bad", octets)
            self.bad("expected a", "verify", "--ca", "small.pem", "bad")
            self.bad("expected a", "crl", "make", "--ca", "bad", "--key", "p256.key")
            self.bad("expected a", "request", "new", "--key", "bad", "--subject", "CN=a")

    def test_key_files(self):
        key = ["key", "new", "--type", "p256", "--out", "secret.key"]
        self.good(*key, "--password-file", self.file("right", "Geheim 1\n"))
        before = (path := self.folder / "secret.key").read_bytes()
        self.assertEqual(path.stat().st_mode & 0o777, 0o600)
        self.assertIn("aes-256-cbc", self.openssl("asn1parse", "-in", "secret.key"))
        self.openssl("pkey", "-in", "secret.key", "-passin", "pass:Geheim 1", "-noout")
        request = self.request("secret", "CN=a")
        self.bad("password does not open", *request, "--password-file",
                 self.file("wrong", "another\n"))
        self.bad("environment variable", *request, "--password-env", "NONE_SUCH")
        self.good(*request, "--password-env", "P", env=os.environ | {"P": "Geheim 1"})
        self.bad("exists", *key)
        self.assertEqual(path.read_bytes(), before)
        self.good(*key, "--force")

    def test_token(self):
        make_token(self.folder)
        for key in "object=rsa", "object=ec;id=%03":
            token = ["--pkcs11", uri(key), "--password-file", "pin", "--out"]
            self.good("cert", "issue", "--self", "--subject", "CN=Token", "--profile", "ca", *token,
                      "token.pem")
            self.openssl("verify", "-check_ss_sig", "-CAfile", "token.pem", "token.pem")
            self.good("crl", "make", "--ca", "token.pem", *token, "token.crl")
            self.good("verify", "--ca", "token.pem", "token.crl")
            self.bad("not that of the CA", "crl", "make", "--ca", "root.pem", *token, "none")


if __name__ == "__main__":
    unittest.main()
