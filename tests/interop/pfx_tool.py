"""What `zacert pfx` makes is opened by the other programs, and what they make by `zacert pfx`."""

import contextlib
import hashlib
import json
import os
import pty
import stat
import subprocess
import termios
import time
import unittest

from cryptography.hazmat.primitives.serialization import Encoding, NoEncryption, PrivateFormat, pkcs12

from support.lists import tlv
from support.messages import DATA, by_openssl, der_of, good, tool
from support.oracle import TOOL
from support.peers import FOLDER, attempt, certificate, file, octets_of, run

EC = "ec -pkeyopt ec_paramgen_curve:"
PEOPLE = {"user": "rsa:2048", "small": "rsa:1024", "large": "rsa:4096", "ec": f"{EC}P-256", "p384": f"{EC}P-384",
          "sm2": f"{EC}SM2", "ed": "ed25519"}
NAME = "用户ä"
PASSWORD = "--password-file pw"
OLD = "-keypbe PBE-SHA1-3DES -certpbe PBE-SHA1-3DES"
NSS_OLD = "PKCS_#12_V2_PBE_With_SHA-1_And_3KEY_Triple_DES-CBC"
WRONG = r"the password is wrong, or the file was changed"


EXPORT = {
    "openssl": "openssl pkcs12 -export -inkey user.key -in user.pem -certfile root.pem -passout pass:abc123 "
               f"-name {NAME} -out",
    "gnutls": "certtool --to-p12 --load-privkey user.key --load-certificate user.pem --p12-name name "
              "--load-ca-certificate root.pem --password abc123 --outfile",
    "java": "keytool -importkeystore -srckeystore legacy -srcstoretype PKCS12 -srcstorepass abc123 "
            "-deststoretype PKCS12 -deststorepass abc123 -destkeystore",
    "nss": f"pk12util -n {NAME} -d sql:nss -W abc123 -o"}


def exported(name, options):
    """The same key under the same password in a file of another program; _ in an option is a blank."""
    program, *options = options.split()
    command = [*EXPORT[program].split(), name, *(option.replace("_", " ") for option in options)]
    subprocess.run(command, cwd=FOLDER, check=True, capture_output=True)


def make(who, options=f"--name {NAME} --chain root.pem"):
    """What was said of the file."""
    status, output, said = tool(f"pfx make --key {who}.key --cert {who}.pem {options} {PASSWORD} --out made")
    assert (status, output, stat.S_IMODE((FOLDER / "made").stat().st_mode)) == (0, "", 0o600), said
    return said


def opened(name, options=PASSWORD):
    """The key in DER and the certificates that the tool writes."""
    (FOLDER / "key").unlink(missing_ok=True)
    good(f"pfx open {options} --key-out key --certs-out certs {name}")
    assert stat.S_IMODE((FOLDER / "key").stat().st_mode) == 0o600
    return by_openssl("pkey -in key -outform DER"), octets_of("certs")


def pair_of(who, *more):
    return by_openssl(f"pkey -in {who}.key -outform DER"), b"".join(octets_of(f"{n}.pem") for n in (who, *more))


def at_terminal(command, *answers):
    """Exit status and all that the terminal shows; answers wait until it shows no more of what is typed."""
    pid, terminal = pty.fork()
    if pid == 0:
        os.chdir(FOLDER)
        os.execv(TOOL, [TOOL, *command.split()])
    said = b""
    for answer in answers:
        while not said.endswith(b": "):
            said += os.read(terminal, 1024)
        while termios.tcgetattr(terminal)[3] & termios.ECHO:
            time.sleep(0.01)
        os.write(terminal, answer + b"\n")
        said += os.read(terminal, 1)
    with contextlib.suppress(OSError):  # its way to tell the end
        while octets := os.read(terminal, 1024):
            said += octets
    os.close(terminal)
    return os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), said.decode()


class Pfx(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        os.environ |= {"PFX": "abc123", "PFX_EMPTY": ""}
        file("pw", b"abc123\n")
        certificate("root", "rsa:2048 -subj /CN=root -set_serial 1")
        for number, (name, kind) in enumerate(PEOPLE.items(), 0x77):
            certificate(name, f"{kind} -subj /CN={name} -CA root.pem -CAkey root.key -set_serial {number}")
        exported("legacy", "openssl -legacy")
        (FOLDER / "nss").mkdir()
        run("certutil -N -d sql:nss --empty-password")
        run("pk12util -i legacy -d sql:nss -W abc123")

    def bad(self, expected, command, octets=b"", status=1):
        """Refused in one line that says so, and without a file."""
        found, output, problems = tool(command, octets)
        self.assertEqual((found, output), (status, ""), (command, problems))
        self.assertRegex(problems, expected, command)
        self.assertTrue(status == 2 or problems.count("\n") == 1, problems)
        self.assertEqual(list(FOLDER.glob("none*")), [])

    def not_opened(self, expected, name, options=PASSWORD, octets=b""):
        self.bad(expected, f"pfx open {options} --key-out none --certs-out none2 {name}", octets)

    def test_made_for_others(self):
        for who in "user", "small", "large":
            self.assertEqual(make(who), "")
            key, certificates = pair_of(who, "root")
            self.assertEqual(opened("made"), (key, certificates))
            text = by_openssl("pkcs12 -legacy -in made -nodes -passin pass:abc123")
            self.assertEqual((by_openssl("pkey -outform DER", text), text.count(b"BEGIN CERT")), (key, 2))
            read = pkcs12.load_pkcs12(octets_of("made"), b"abc123")
            self.assertEqual((read.cert.friendly_name.decode(), len(read.additional_certs)), (NAME, 1))
            self.assertEqual(key, read.key.private_bytes(
                Encoding.DER, PrivateFormat.TraditionalOpenSSL, NoEncryption()))
            said = run("certtool --p12-info --inder --infile made --password abc123").decode()
            self.assertEqual((said.count(f"Friendly name: {NAME}"), said.count("BEGIN CERT")), (2, 2))
            self.assertIn(NAME.encode(), run("pk12util -l made -W abc123"))
            (FOLDER / f"nss-{who}").mkdir()
            run(f"certutil -N --empty-password -d sql:nss-{who}")
            run(f"pk12util -i made -W abc123 -d sql:nss-{who}")
            self.assertIn(NAME.encode(), run(f"certutil -K -d sql:nss-{who}"))
        self.assertIn(b"PrivateKeyEntry", run("keytool -list -keystore made -storetype PKCS12 -storepass abc123"))
        run(f"{EXPORT['java'].replace('legacy', 'made')} imported")

    def test_names_and_identifiers(self):
        automatic = hashlib.sha1(der_of("user")).hexdigest()
        for identifier, options, names in (automatic, "", 0), ("01ab", "--local-key-id 01AB --name b", 2):
            make("user", f"{options} --chain user.pem --chain root.pem")  # the first one once
            text = by_openssl("pkcs12 -legacy -in made -nodes -passin pass:abc123 -info").decode()
            found = [line.split(": ")[1].replace(" ", "").lower() for line in text.split("\n") if "localKeyID" in line]
            self.assertEqual(found, [identifier] * 2)
            self.assertEqual((text.count("friendlyName: b"), text.count("BEGIN CERT")), (names, 2))

    def test_elliptic_curves(self):
        for who, reads in ("ec", "certtool reads"), ("p384", "certtool reads"), ("sm2", "no other program"):
            self.assertRegex(make(who), f"curve.*{reads}.*\n$")
            self.assertEqual(opened("made"), pair_of(who, "root"))
            run("certtool --p12-info --inder --infile made --password abc123 --outfile info")
            self.assertEqual(attempt("certtool --key-info --infile info --password abc123")[0], who != "sm2")
            self.assertFalse(attempt("openssl pkcs12 -legacy -in made -nodes -passin pass:abc123")[0])

    def test_make_refuses(self):
        for reason, options, status in (
                ("not that of the certificate", "--key small.key --cert user.pem", 1),
                ("elliptic-curve key", "--key ed.key --cert ed.pem", 1),
                ("CERTIFICATE", "--key user.key --cert user.key", 1),
                ("expected a certificate", "--key user.key --cert user.pem --chain pw", 1),
                (r"U\+FFFF", "--key user.key --cert user.pem --name 😀", 2),
                ("hexadecimal", "--key user.key --cert user.pem --local-key-id 1", 2),
                ("required", "--key user.key", 2)):
            self.bad(reason, f"pfx make {options} {PASSWORD} --out none", status=status)

    def test_files_of_others(self):
        key, certificates = pair_of("user", "root")
        for name, options in enumerate((
                "gnutls --pkcs-cipher 3des-pkcs12 --hash sha1 --outder", "gnutls --pkcs-cipher rc2-40 --hash sha1",
                f"nss -c {NSS_OLD} -C {NSS_OLD} -M SHA-1", "java -J-Dkeystore.pkcs12.legacy", "openssl -legacy",
                f"openssl {OLD} -macalg sha1 -noiter -nomaciter", "openssl -legacy -macalg md5",
                "openssl -legacy -certpbe NONE", "openssl -legacy -keypbe NONE",
                "openssl -legacy -keypbe PBE-SHA1-RC4-128 -certpbe PBE-SHA1-RC4-40",
                "openssl -legacy -keypbe PBE-SHA1-2DES -certpbe PBE-SHA1-RC2-128")):
            exported(f"old{name}", options)
            self.assertEqual(octets_of(f"old{name}")[:2] == b"\x30\x80", options.startswith("nss"))  # no lengths
            self.assertEqual(opened(f"old{name}")[0], key)
            good(f"pfx open {PASSWORD} --cert-out cert --chain-out chain old{name}")
            self.assertEqual(octets_of("cert") + octets_of("chain"), certificates)
            self.assertEqual(sorted(octets_of("certs")), sorted(certificates))
            said = good(f"pfx show {PASSWORD} old{name}")
            for part in "right (200)", "RSA 2048", "localKeyID", "CN=user, serial 77 of CN=root":
                self.assertIn(part, said)
            self.assertEqual(f"friendlyName {NAME}\n" in said, "gnutls" not in options)  # it takes them for Latin-1

    def test_what_the_library_cannot_read(self):
        sha256, aes = "MAC over SHA-256", "encrypted with PBES2, AES-(128|256)-CBC"
        for name, (options, found) in enumerate((
                ("nss", f"{sha256}; {aes}"), ("openssl", f"{sha256}; {aes}"), ("gnutls --outder", f"{sha256}; {aes}"),
                ("java", f"{sha256}; {aes}"), (f"openssl {OLD}", sha256), ("openssl -macalg sha1", aes),
                ("openssl -legacy -keypbe PBE-MD5-DES", "encrypted with PBE-MD5-DES"))):
            exported(f"new{name}", options)
            self.not_opened(f"here: {found};.* -export -legacy", f"new{name}")
            status, output, said = tool(f"pfx show {PASSWORD} new{name}")
            self.assertEqual((status, "not opened" in output, said.count("\n")), (1, True, 1), said)

    def test_show(self):
        found, = json.loads(good(f"pfx show --format json {PASSWORD} legacy"))
        certificates, (key,) = (container["bags"] for container in found["containers"])
        self.assertEqual([c["certificate"]["serial"] for c in certificates], ["77", "01"])
        self.assertEqual(key["private_key"], {"algorithm": "RSA", "oid": "1.2.840.113549.1.1.1", "bits": 2048})
        self.assertEqual([a.get("value") for a in key["attributes"]], [NAME, None])
        self.assertEqual((found["kind"], found["mac"]["result"], found["mac"]["iterations"]), ("pkcs12", 200, 2048))
        found, = json.loads(good("pfx show --format json --no-password legacy"))
        self.assertEqual([container["opened"] for container in found["containers"]], [False, True])
        self.assertNotIn("private_key", found["containers"][1]["bags"][0])
        status, output, said = tool("pfx show --password-env PFX_EMPTY legacy")
        self.assertEqual((status, "wrong (300)" in output, "CN=" in output), (1, True, False), said)

    def test_bags_by_hand(self):
        """A third container, bags in a bag, a CRL and a secret; nothing is encrypted."""
        def file_of(*containers):
            data = [tlv(0x30, DATA + tlv(0xa0, tlv(4, tlv(0x30, each)))) for each in (*containers, b"")]
            return tlv(0x30, b"\2\1\3" + tlv(0x30, DATA + tlv(0xa0, tlv(4, tlv(0x30, b"".join(data))))))

        def bag(number, content, oid=""):
            content = tlv(0x30, bytes.fromhex(oid) + tlv(0xa0, tlv(4, content))) if oid else content
            return tlv(0x30, bytes.fromhex("060b2a864886f70d010c0a01") + bytes([number]) + tlv(0xa0, content))
        file("index", b"")
        file("cnf", b"[ca]\ndefault_ca=c\n[c]\ndatabase=index\ndefault_md=sha256\n")
        crl = by_openssl("ca -gencrl -crldays 9 -cert root.pem -keyfile root.key -config cnf")
        crl = bag(4, by_openssl("crl -outform DER", crl), "060a2a864886f70d01091701")
        key = bag(1, by_openssl("pkcs8 -topk8 -nocrypt -in large.key -outform DER"))
        inner = bag(6, tlv(0x30, bag(3, der_of("large"), "060a2a864886f70d01091601") + key))
        file("bags", file_of(crl, bag(5, b"secret", "06032a0304"), inner))
        self.assertEqual(opened("bags", f"--no-mac {PASSWORD}"), pair_of("large"))
        for part in "crlBag\n", "CN=root", "0 revoked", "1.2.3.4, 6 octets", "safeContentsBag", "keyBag\n", "RSA 4096":
            self.assertIn(part, good("pfx show --no-password bags"))
        for reason, container in ("a private key, there is none", crl), ("inside", key + bag(3, b"\5\0")):
            self.not_opened(reason, "-", f"--no-mac {PASSWORD}", file_of(container))

    def test_mac(self):
        file("wrong", b"abc124\n")
        self.not_opened(rf"{WRONG} \(300\)", "legacy", "--no-mac --password-file wrong")
        exported("nomac", "openssl -legacy -nomac")
        self.not_opened("expected a MAC.*--no-mac", "nomac")
        self.not_opened(f"{WRONG}\n", "nomac", "--no-mac --password-file wrong")
        self.assertEqual(opened("nomac", f"--no-mac {PASSWORD}"), pair_of("user", "root"))

    def test_key_files_are_kept(self):
        file("kept", b"another key")
        self.bad("File exists", f"pfx open {PASSWORD} --key-out kept --certs-out none legacy")
        good(f"pfx open {PASSWORD} --key-out kept --force legacy")
        self.assertEqual(by_openssl("pkey -in kept -outform DER"), pair_of("user")[0])
        self.bad("required", f"pfx open {PASSWORD} legacy", status=2)

    def test_damage(self):
        octets = octets_of("legacy")
        for damaged in *(octets[:cut] for cut in range(0, len(octets), 97)), octets[:-1], octets + b"\0", b"text":
            self.not_opened("expected a PKCS#12 file", "-", octets=damaged)
        exported("many", "openssl -legacy -iter 70000")
        self.not_opened("at most 5000000 iterations", "-", octets=octets_of("many").replace(
            b"\2\3\x01\x11\x70", b"\2\3\x7f\xff\xff"))
        for at in range(60, len(octets) - 60, 13):  # what the MAC covers
            changed = octets[:at] + bytes([octets[at] ^ 1]) + octets[at + 1:]
            self.not_opened(r"\(300\)|expected a PKCS#12 file|cannot be read", "-", octets=changed)

    def test_passwords(self):
        by_openssl("pkey -in user.key -aes256 -passout pass:key -out locked.key")
        file("locked", b"key\n")
        file("octets", "密码\n".encode())
        for source, text in (PASSWORD, "abc123"), ("--password-env PFX", "abc123"), ("--password-env PFX_EMPTY", ""):
            good(f"pfx make --key locked.key --key-password-file locked --cert user.pem {source} --out made")
            self.assertEqual(opened("made", source), pair_of("user"))
            by_openssl(f"pkcs12 -legacy -in made -nodes -passin pass:{text}")
        for command in "make --key user.key --cert user.pem --out made", "open --key-out - made":
            status, _, said = tool(f"pfx {command} --password-file octets")
            self.assertEqual((status, said.count("not ASCII"), said.count("\n")), (0, 1, 1), said)
        self.bad("PFX_NONE", "pfx make --key user.key --cert user.pem --password-env PFX_NONE --out none")
        self.bad("excludes", f"pfx show {PASSWORD} --password-env PFX legacy", status=2)
        self.bad("--password", "pfx show --password abc123 legacy", status=2)

    def test_terminal(self):
        make_typed = "pfx make --key user.key --cert user.pem --out"
        for status, command, answers in ((0, f"{make_typed} typed", [b"se1cret"] * 2),
                                         (0, "pfx show typed", [b"se1cret"]), (1, "pfx show typed", [b"se2cret"]),
                                         (1, f"{make_typed} none", [b"se1cret", b"se2cret"])):
            found, said = at_terminal(command, *answers)
            self.assertEqual((found, said.count("assword of"), said.count("cret\r")), (status, len(answers), 0), said)
        self.assertFalse((FOLDER / "none").exists())


if __name__ == "__main__":
    unittest.main()
