"""A whole PKI through the tool, checked with openssl and certtool."""

import os
import pathlib
import resource
import stat
import subprocess
import tempfile
import unittest

from support.oracle import TOOL, run

SM2_ID = ["-vfyopt", "distid:1234567812345678"]
SOURCE = pathlib.Path(os.environ["ZACERT_SOURCE_DIR"])
SOFTHSM = next(pathlib.Path("/usr/lib").rglob("libsofthsm2.so"), None)


class Pki(unittest.TestCase):
    """One folder: root (RSA), intermediate (P-256), users of each kind of key, CRL."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        for key, kind in (("root", "rsa-2048"), ("ca", "p256"), ("rsa", "rsa-2048"),
                          ("p256", "p256"), ("sm2", "sm2"), ("sm2ca", "sm2")):
            cls.good("key", "new", "--type", kind, "--out", f"{key}.key")
        cls.self_signed("root", "C=CN,O=示例,CN=根")
        cls.self_signed("sm2ca", "C=CN,O=示例,CN=国密根")
        cls.request("ca", "C=CN,O=示例,CN=中级")
        cls.issue("ca", "--profile", "ca", "--path-length", "0", ca="root")
        for user, profile in ("rsa", "server"), ("p256", "client"), ("sm2", "email"):
            cls.request(user, f"C=CN,O=R & D,OU=张三\\, 北京,CN={user}", "--dns", "a.example.org",
                        "--dns", "b.example.org", "--email", "a@example.org", "--ip", "::1",
                        "--uri", "http://example.org/a")
            cls.issue(user, "--profile", profile, "--crl-url", "http://example.org/crl",
                      "--ocsp-url", "http://example.org/ocsp", "--policy", "1.2.3.4",
                      "--identity", "passport=E1234567", "--identity", "officer-card=军1")

    @classmethod
    def tool(cls, *arguments, **options):
        return subprocess.run([TOOL, *map(str, arguments)], cwd=cls.folder, capture_output=True,
                              check=False, text=True, **options)

    @classmethod
    def good(cls, *arguments):
        result = cls.tool(*arguments)
        if result.returncode != 0:
            raise AssertionError(f"{arguments}: {result.stdout}{result.stderr}")
        return result.stdout

    @classmethod
    def self_signed(cls, name, subject, *more, out=None):
        cls.good("cert", "issue", "--self", "--subject", subject, "--key", f"{name}.key",
                 "--profile", "ca", "--out", f"{out or name}.pem", *more)

    @classmethod
    def request(cls, name, subject, *more):
        cls.good("request", "new", "--key", f"{name}.key", "--subject", subject, "--out",
                 f"{name}.csr", *more)

    @classmethod
    def issue(cls, name, *more, ca="ca", out=None):
        cls.good("cert", "issue", "--request", f"{name}.csr", "--ca", f"{ca}.pem", "--ca-key",
                 f"{ca}.key", "--out", f"{out or name}.pem", *more)

    def bad(self, expected, *arguments, status=1, **options):
        """Refused in one line, or by the check that says so, and without a file."""
        result = self.tool(*arguments, **options)
        self.assertEqual(result.returncode, status, result)
        self.assertIn(expected, result.stdout + result.stderr)
        if status == 1 and not result.stdout:
            self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertFalse((self.folder / "none").exists())
        self.assertEqual([f.name for f in self.folder.iterdir() if f.name.startswith("none")], [])

    def openssl(self, *arguments, **options):
        return run(["openssl", *arguments], cwd=self.folder, **options).decode()

    def verify(self, *arguments, ca="root.pem"):
        return ["verify", "--ca", ca, "--intermediate", "ca.pem", *arguments]

    def test_certificates(self):
        self.openssl("verify", "-x509_strict", "-CAfile", "root.pem", "root.pem", "ca.pem")
        bundle = (self.folder / "ca.pem").read_bytes() + (self.folder / "root.pem").read_bytes()
        for user, purpose, ours in (("rsa", "sslserver", "server"), ("p256", "sslclient", "client"),
                                    ("sm2", "smimesign", "email")):
            with self.subTest(user):
                self.openssl("verify", "-purpose", purpose, "-CAfile", "root.pem", "-untrusted",
                             "ca.pem", f"{user}.pem")
                if user != "sm2":
                    run(["certtool", "--verify-chain"],
                        input=(self.folder / f"{user}.pem").read_bytes() + bundle)
                text = self.openssl("x509", "-in", f"{user}.pem", "-noout", "-text", "-nameopt",
                                    "utf8")
                for expected in ("OU=张三, 北京", "DNS:a.example.org, DNS:b.example.org, email:a@e",
                                 "IP Address:0:0:0:0:0:0:0:1, URI:http://example.org/a",
                                 "OCSP - URI:http://example.org/ocsp", "Policy: 1.2.3.4"):
                    self.assertIn(expected, text)
                self.assertRegex(self.serial(user), "^(0[1-9A-F]|[1-7].)[0-9A-F]{30}$")
                self.assertIn("E1234567", self.good("show", f"{user}.pem"))
                self.good(*self.verify("--purpose", ours, f"{user}.pem"))
        self.good("verify", "--ca", "sm2ca.pem", "sm2ca.pem")
        self.issue("sm2", "--profile", "ocsp", ca="sm2ca", out="responder")
        self.openssl("verify", *SM2_ID, "-CAfile", "sm2ca.pem", "responder.pem")
        self.good("verify", "--ca", "sm2ca.pem", "--purpose", "ocsp", "responder.pem")

    def test_requests(self):
        for user in "rsa", "p256", "sm2":
            options = SM2_ID if user == "sm2" else []
            text = self.openssl("req", "-in", f"{user}.csr", "-verify", "-noout", "-text", *options)
            self.assertIn("DNS:a.example.org, DNS:b.example.org, email:a@example.org", text)
            self.good("verify", f"{user}.csr")
        # One of openssl's, with the names it asks for.
        self.openssl("req", "-new", "-key", "p256.key", "-subj", "/CN=foreign", "-addext",
                     "subjectAltName=DNS:f.example.org", "-out", "foreign.csr")
        self.issue("foreign", "--profile", "server")
        self.assertIn("f.example.org", self.good("show", "foreign.pem"))
        damaged = bytearray(run(["openssl", "req", "-in", self.folder / "rsa.csr", "-outform",
                                 "DER"]))
        damaged[60] ^= 1
        (self.folder / "damaged.csr").write_bytes(damaged)
        self.bad("signature", "verify", "damaged.csr")
        self.bad("not signed by its own key", "cert", "issue", "--request", "damaged.csr", "--ca",
                 "root.pem", "--ca-key", "root.key", "--profile", "server", "--out", "none")

    def test_revocation(self):
        make = ["crl", "make", "--ca", "ca.pem", "--ca-key", "ca.key", "--out"]
        self.good(*make, "1.crl", "--revoke", "0a:0b,2024-01-31,superseded", "--number", "7")
        self.good(*make, "2.crl", "--previous", "1.crl", "--revoke-cert", "rsa.pem", "--reason",
                  "keyCompromise")
        text = self.openssl("crl", "-in", "2.crl", "-CAfile", "ca.pem", "-noout", "-text")
        for expected in ("0A0B", "Jan 31 00:00:00 2024", "Superseded", "Key Compromise",
                         "CRL Number: \n                8"):
            self.assertIn(expected, text)
        run(["certtool", "--verify-crl", "--load-ca-certificate", self.folder / "ca.pem",
             "--infile", self.folder / "2.crl"])
        self.good(*self.verify("--crl", "1.crl", "rsa.pem", "p256.pem", "1.crl"))
        self.good(*self.verify("--crl", "2.crl", "p256.pem"))
        self.bad("keyCompromise", *self.verify("--crl", "2.crl", "rsa.pem"))
        self.bad("replaced", *self.verify("--crl", "1.crl", "--at", "2027-06-01", "p256.pem"))
        self.bad("no CRL", *self.verify("--crl", "1.crl", "ca.pem"))
        self.good(*make, "d.crl", "--delta", "8", "--revoke-cert", "p256.pem", "--revoke",
                  f"{self.serial('rsa')},,removeFromCRL")
        self.bad("revoked at", *self.verify("--crl", "2.crl", "--crl", "d.crl", "p256.pem"))
        self.good(*self.verify("--crl", "2.crl", "--crl", "d.crl", "rsa.pem"))
        self.bad("line 2", *make, "none", "--list", self.file("list", "0A\nxyz\n"))
        self.bad("not one of this CA", *make, "none", "--revoke-cert", "ca.pem")

    def serial(self, name):
        return self.openssl("x509", "-in", f"{name}.pem", "-noout", "-serial").strip()[7:]

    def file(self, name, text):
        (self.folder / name).write_text(text)
        return name

    def test_long_list(self):
        """Twice the entries, twice the instructions of the processor: no squares."""
        times = []
        for count in 20000, 40000:
            self.file("long", "".join(f"{i + 1:x},2024-01-31\n" for i in range(count)))
            before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
            self.good("crl", "make", "--ca", "root.pem", "--ca-key", "root.key", "--list", "long",
                      "--der", "--out", "long.crl")
            times.append(resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before)
            text = self.openssl("crl", "-inform", "DER", "-in", "long.crl", "-noout", "-text")
            self.assertEqual(text.count("Serial Number:"), count)
        self.assertLess(times[1], 3 * times[0] + 0.5)

    def test_refusals(self):
        issue = ["cert", "issue", "--request", "rsa.csr", "--profile", "server", "--out", "none"]
        self.bad("not a CA's", *issue, "--ca", "rsa.pem", "--ca-key", "rsa.key")
        self.bad("not that of the CA", *issue, "--ca", "root.pem", "--ca-key", "rsa.key")
        self.bad("no CA below", *issue[:4], "--profile", "ca", "--out", "none", "--ca", "ca.pem",
                 "--ca-key", "ca.key")
        self.self_signed("root", "CN=old", "--not-before", "2020-01-01", "--not-after",
                         "2021-01-01", out="old")
        self.bad("expired", *issue, "--ca", "old.pem", "--ca-key", "root.key")
        self.openssl("req", "-x509", "-key", "root.key", "-subj", "/CN=nosign", "-addext",
                     "keyUsage=digitalSignature", "-out", "nosign.pem")
        self.bad("lacks keyCertSign", *issue, "--ca", "nosign.pem", "--ca-key", "root.key")
        self.bad("", "cert", "issue", "--profile", "server", "--key", "rsa.key", status=2)
        for subject in "CN", "CN=", "XX=a", "C=CHN", "CN=a+OU=b", "":
            self.bad("expected", "request", "new", "--key", "rsa.key", "--subject", subject, "--out",
                     "none")
        capped = self.tool("cert", "issue", "--self", "--subject", "CN=late", "--key", "rsa.key",
                           "--profile", "ca", "--days", "9999")
        self.assertIn("capped at 2038-01-19 03:14:07", capped.stderr)
        self.assertEqual(capped.stderr.count("\n"), 1)

    def test_what_is_not_good(self):
        self.bad("no certificate of its issuer", "verify", "--ca", "root.pem", "rsa.pem")
        self.bad("expired", *self.verify("--at", "2037-12-31", "rsa.pem"))
        self.bad("begins", *self.verify("--at", "2020-01-01", "rsa.pem"))
        self.bad("may not be used", *self.verify("--purpose", "client", "rsa.pem"))
        self.bad("required", "verify", "rsa.pem", status=2)
        # Issued by openssl, which asks no questions: below a CA that may not sign, with an unknown
        # critical extension, with keys and algorithms that are libcrypto's alone.
        self.file("ext", "1.2.3.4=critical,DER:0500")
        for ca, options, expected in (
                ("nosign2", ["-addext", "keyUsage=digitalSignature"], "lacks keyCertSign"),
                ("noca", ["-addext", "basicConstraints=critical,CA:false"], "deny"),
                ("plain", [], "1.2.3.4"), ("big", ["-newkey", "rsa:3072", "-noenc"], "libcrypto"),
                ("p384", ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-384", "-noenc"],
                 "libcrypto")):
            new = "-newkey" in options
            self.openssl("req", "-x509", "-subj", f"/CN={ca}", "-out", f"{ca}.pem",
                         *(["-keyout", f"{ca}.key"] if new else ["-key", "root.key"]),
                         *[o for o in options])
            self.openssl("x509", "-req", "-in", "rsa.csr", "-CA", f"{ca}.pem", "-CAkey",
                         f"{ca}.key" if new else "root.key", "-CAcreateserial", "-out",
                         "foreign.pem", *(["-extfile", "ext"] if ca == "plain" else []))
            if new:
                self.assertIn(expected, self.good("verify", "--ca", f"{ca}.pem", "foreign.pem"))
            else:
                self.bad(expected, "verify", "--ca", f"{ca}.pem", "foreign.pem")

    def test_damage(self):
        """Every octet of a certificate counts, and every cut is told."""
        self.good("cert", "issue", "--self", "--subject", "CN=a", "--key", "p256.key", "--profile",
                  "ca", "--der", "--out", "small.der")
        der = (self.folder / "small.der").read_bytes()
        for at in range(0, len(der), 7):
            (self.folder / "bad.der").write_bytes(der[:at] + bytes([der[at] ^ 1]) + der[at + 1:])
            self.assertEqual(self.tool("verify", "--ca", "small.der", "bad.der").returncode, 1, at)
        for octets in b"", der[:100], b"text", der + der:
            (self.folder / "bad.der").write_bytes(octets)
            for command in (["verify", "--ca", "small.der", "bad.der"],
                            ["crl", "make", "--ca", "bad.der", "--ca-key", "p256.key", "--out",
                             "none"],
                            ["request", "new", "--key", "bad.der", "--subject", "CN=a", "--out",
                             "none"]):
                self.bad("expected a", *command)
        self.bad("", "cert", "issue", "--self", "--subject", "CN=a", "--key", "p256.key",
                 "--profile", "ca", "--out", "missing/none")

    def test_key_files(self):
        path = self.folder / "secret.key"
        environment = os.environ | {"PASSWORD": "Geheim 1"}
        self.file("password", "Geheim 1\n")
        self.good("key", "new", "--type", "p256", "--out", path, "--password-file", "password")
        self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o600)
        self.assertIn(b"ENCRYPTED", path.read_bytes())
        self.assertIn("AES-256-CBC", self.openssl("asn1parse", "-in", path).upper())
        self.openssl("pkey", "-in", path, "-passin", "pass:Geheim 1", "-noout")
        request = ["request", "new", "--key", path, "--subject", "CN=a", "--out"]
        self.assertEqual(self.tool(*request, "s.csr", "--password-env", "PASSWORD",
                                   env=environment).returncode, 0)
        self.file("password", "another\n")
        self.bad("password", *request, "none", "--password-file", "password")
        self.bad("environment variable", *request, "none", "--password-env", "NONE_SUCH")
        before = path.read_bytes()
        self.bad("exists", "key", "new", "--out", path)
        self.assertEqual(path.read_bytes(), before)
        self.good("key", "new", "--out", path, "--force")
        self.openssl("rsa", "-in", path, "-check", "-noout")

    @unittest.skipIf(SOFTHSM is None, "there is no SoftHSM")
    def test_token(self):
        os.environ["SOFTHSM2_CONF"] = str(self.folder / "token" / "conf")
        (self.folder / "token").mkdir()
        run(["bash", SOURCE / "tests/data/companion/make-token.sh", self.folder / "token", SOFTHSM])
        self.file("pin", "1234\n")
        for key in "object=rsa", "object=ec;id=%03":
            uri = f"pkcs11:{key}?module-path={SOFTHSM}"
            self.good("cert", "issue", "--self", "--subject", "CN=Token", "--pkcs11", uri,
                      "--password-file", "pin", "--profile", "ca", "--out", "token.pem")
            self.openssl("verify", "-check_ss_sig", "-CAfile", "token.pem", "token.pem")
            self.good("crl", "make", "--ca", "token.pem", "--pkcs11", uri + "&pin-value=1234",
                      "--out", "token.crl")
            self.good("verify", "--ca", "token.pem", "token.crl")
            self.bad("not that of the CA", "cert", "issue", "--request", "rsa.csr", "--ca",
                     "root.pem", "--pkcs11", uri, "--password-file", "pin", "--profile", "server",
                     "--out", "none")


if __name__ == "__main__":
    unittest.main()
