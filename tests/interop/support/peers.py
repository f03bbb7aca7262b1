"""The programs that read and write PKCS#7 messages besides the library, and keys for all of them."""
import contextlib
import os
import pathlib
import re
import shlex
import subprocess
import tempfile
import warnings

from cryptography import x509
from cryptography.hazmat.primitives.serialization import Encoding, load_pem_private_key, pkcs7

TEMPORARY = tempfile.TemporaryDirectory()
FOLDER = pathlib.Path(TEMPORARY.name)
os.environ["GNUPGHOME"] = str(FOLDER / "gpg")
# Strings of the oldest type that holds them, which is also the library's choice.
REQUEST = b"""[req]
string_mask=default
distinguished_name=names
x509_extensions=extensions
[names]
[extensions]
basicConstraints=critical,CA:TRUE
subjectKeyIdentifier=hash
[user]
keyUsage=critical,digitalSignature,keyEncipherment
[silent]
keyUsage=critical,keyEncipherment
"""
OPENSSL = "openssl %s -verify -inform DER -CAfile ca.pem -purpose any -binary -out out -in"
VERIFY = {"cms": (OPENSSL % "cms", "-content"), "smime": (OPENSSL % "smime", "-content"),
          "certtool": ("certtool --p7-verify --load-ca-certificate ca.pem --inder --infile", "--load-data"),
          "NSS": ("cmsutil -D -d sql:nss -n -i", "-c"), "gpgsm": ("gpgsm --verify", "")}
ALL = {*VERIFY, "java"}


def ended(command, stdin=b""):
    return subprocess.run(shlex.split(command), input=stdin, capture_output=True, cwd=FOLDER, check=False)


def attempt(command, stdin=b""):
    """Whether a command succeeds, and what it says."""
    done = ended(command, stdin)
    return done.returncode == 0, done.stdout + done.stderr


def run(command, stdin=b""):
    """Standard output of a command that must succeed."""
    done = ended(command, stdin)
    assert done.returncode == 0, f"{command}: {(done.stdout + done.stderr).decode(errors='replace')}"
    return done.stdout


def file(name, octets):
    (FOLDER / name).write_bytes(octets)
    return name


def octets_of(name):
    return (FOLDER / name).read_bytes()


def told(text):
    """The keys, but not those still encrypted, and the certificates in a program's output."""
    found = re.findall(rb"(-----BEGIN (?:[A-Z]+ )*(PRIVATE KEY|CERTIFICATE)-----\n[^-]*-----END .*-----\n)", text)
    return ([load_pem_private_key(pem, None).private_numbers() for pem, kind in found
             if kind != b"CERTIFICATE" and b"ENCRYPTED" not in pem],
            [x509.load_pem_x509_certificate(pem).public_bytes(Encoding.DER) for pem, kind in found
             if kind == b"CERTIFICATE"])


def certificate(name, options):
    """A key and its certificate, as files."""
    run(f"openssl req -x509 -config {file('cnf', REQUEST)} -nodes -days 30 -keyout {name}.key -out {name}.pem "
        f"-newkey {options}")


class Identity:
    """An RSA key and its own certificate, as files and as the library takes them."""

    def __init__(self, name, names="", option="rsa:2048"):
        self.name = name
        certificate(name, f"{option} -subj /C=DE/O=Example/CN={name}{names}")
        self.key = load_pem_private_key(octets_of(f"{name}.key"), None)
        self.certificate = x509.load_pem_x509_certificate(octets_of(f"{name}.pem"))
        self.der, self.issuer = self.certificate.public_bytes(Encoding.DER), self.certificate.issuer.public_bytes()
        self.serial = self.certificate.serial_number.to_bytes(20, "big").lstrip(b"\0")
        file(f"{name}.der", self.der)
        if option == "rsa:2048":
            of, public = self.key.private_numbers(), self.key.public_key().public_numbers()
            self.private = bytes(4) + b"".join(number.to_bytes(size, "big") for number, size in (
                (public.n, 256), (public.e, 256), (of.d, 256), (of.p, 128), (of.q, 128), (of.dmp1, 128), (of.dmq1, 128),
                (of.iqmp, 128)))
            self.public = self.private[:516]

    def introduce(self):
        """Puts key and certificate, trusted, where the programs look."""
        name = self.name
        for _ in range(9):  # gpgsm reads old encryption alone, and one file in fifty or so not at all
            run(f"openssl pkcs12 -export -in {name}.pem -inkey {name}.key -name {name} -out {name}.p12 -passout pass:x "
                "-keypbe PBE-SHA1-3DES -certpbe PBE-SHA1-3DES -macalg sha1")
            good, said = attempt(f"gpgsm --import {name}.p12", b"x\n")
            if good:
                break
        assert good, said
        run(f"pk12util -i {name}.p12 -d sql:nss -W x")
        run(f"certutil -M -n {name} -t CT,CT,CT -d sql:nss")
        fingerprint = run(f"openssl x509 -in {name}.pem -noout -fingerprint").split(b"=")[1].strip()
        for path, line in (("gpg/trustlist.txt", fingerprint + b" S relax\n"), ("ca.pem", octets_of(f"{name}.pem"))):
            with open(FOLDER / path, "ab") as trusted:
                trusted.write(line)


@contextlib.contextmanager
def introduced(*people):
    """The programs know these people within; afterwards gpgsm's agent ends."""
    (FOLDER / "gpg").mkdir(0o700)
    (FOLDER / "nss").mkdir()
    file("gpg/gpg-agent.conf", b"allow-loopback-pinentry\ns2k-count 1024\n")
    file("gpg/gpgsm.conf", b"batch\nyes\ndisable-dirmngr\ndisable-crl-checks\ninclude-certs 1\n"
                           b"pinentry-mode loopback\npassphrase-fd 0\n")
    run("certutil -N -d sql:nss --empty-password")
    try:
        for person in people:
            person.introduce()
        yield
    finally:
        attempt("gpgconf --kill all")


def refusing(message, content=None, asked=frozenset(VERIFY)):
    """Those of the programs asked that do not verify a message, its content perhaps beside it."""
    return {name for name, (command, option) in VERIFY.items() if name in asked and not
            attempt(f"{command} {message} " + (f"{option} {content}" if content else ""))[0]}


def java_verifies(messages):
    """Of all messages and contents at once, since starting Java takes longer than everything else."""
    source = pathlib.Path(__file__).with_name("Verify.java")
    pairs = " ".join(f"{message} {content or '-'}" for message, content in messages)
    answers = run(f"java --add-exports java.base/sun.security.pkcs=ALL-UNNAMED {source} {pairs}").split()
    assert len(answers) == len(messages), answers
    return [answer == b"good" for answer in answers]


def certificates_by_cryptography(message):
    with warnings.catch_warnings():
        # Newer releases say of some messages that they are no DER, and then read them all the same.
        warnings.simplefilter("ignore")
        read = pkcs7.load_der_pkcs7_certificates(octets_of(message))
    return [certificate.public_bytes(Encoding.DER) for certificate in read]
