#!/usr/bin/env python3
"""PKCS#12 files of five other programs before the library: what it reads in them, and what it refuses."""
import ctypes
import os

from cryptography.hazmat.primitives import hashes
from cryptography.hazmat.primitives.serialization import BestAvailableEncryption, PrivateFormat, pkcs12 as theirs

from support import pkcs12
from support.messages import EC, inside
from support.peers import FOLDER, Identity, file, octets_of, run, told
from support.pkcs7 import U32

GBK = "密码".encode("gbk")
small, usual = Identity("Small", option="rsa:1024"), Identity("Usual")
others = [Identity(name, option=EC) for name in ("Curve", "Two", "Three", "Four")]
Identity("Large", option="rsa:3072")
OPENSSL = "openssl pkcs12 -export -out p12 -name One -passout pass:abc123 -inkey {0}.key -in {0}.pem "
CERTTOOL = ("certtool --to-p12 --outder --outfile p12 --p12-name One --password abc123 --load-privkey {0}.key "
            "--load-certificate {0}.pem ")
KEYTOOL = "keytool -genkeypair -alias One -dname CN=One -storetype PKCS12 -keystore p12 -storepass abc123 -keyalg "
NSS = "pk12util -o p12 -n Usual -d sql:nss -W abc123 "
TRIPLE = "-keypbe PBE-SHA1-3DES -certpbe PBE-SHA1-3DES "
RC4 = "-keypbe PBE-SHA1-RC4-128 -certpbe PBE-SHA1-RC4-128"
NSS_TRIPLE = "PKCS #12 V2 PBE With SHA-1 And 3KEY Triple DES-CBC"
REFUSED = "126 300 - - -"
# A command, and what is read (pkcs12.File.summary). A key that is not in the second container has lost its attributes;
# one of another length than the library hands out is not there.
ROWS = [
    (OPENSSL + "-legacy", "0 200 key - NI NI"),
    (OPENSSL + TRIPLE + "-macalg sha1", "0 200 key - NI NI"),
    (OPENSSL + TRIPLE + "-macalg sha1 -noiter -nomaciter", "0 200 key - NI NI"),
    (OPENSSL + TRIPLE, REFUSED),
    (OPENSSL, REFUSED),
    (OPENSSL + "-macalg sha1", "139 300 - - -"),
    (OPENSSL + "-legacy " + RC4, "0 200 key - NI NI"),
    (OPENSSL + "-legacy -macalg md5", "0 300 key - NI NI"),
    (OPENSSL + "-legacy -nomac", "0 300 key - NI NI"),
    (OPENSSL + "-legacy -nokeys", "0 200 - - - -"),
    (OPENSSL + "-legacy -nocerts", "0 200 key - -"),
    (OPENSSL + "-legacy -certpbe NONE", "0 200 key - NI NI"),
    (OPENSSL + "-legacy -keypbe NONE", "0 200 - - - NI"),
    (OPENSSL + "-legacy -keysig -CSP Provider", "0 200 key U NxI NI"),
    *((OPENSSL + f"-legacy -certfile {count}.pem -caname Other", "0 200 key - NI NI N" + " -" * (count - 1))
      for count in range(1, 5)),
    (OPENSSL.replace("{0}", "Usual") + "-legacy", "0 200 key - NI NI"),
    (OPENSSL.replace("{0}", "Curve") + "-legacy", "0 200 key - NI NI"),
    (OPENSSL.replace("{0}", "Large") + "-legacy", "0 200 - - NI NI"),
    (CERTTOOL + "--pkcs-cipher 3des-pkcs12 --hash sha1", "0 200 key - NI NI"),
    (CERTTOOL + "--pkcs-cipher rc2-40 --hash sha1", "0 200 key - NI NI"),
    (CERTTOOL + "--pkcs-cipher 3des-pkcs12", REFUSED),
    (CERTTOOL, REFUSED),
    (KEYTOOL + "RSA -keysize 1024 -J-Dkeystore.pkcs12.legacy", "0 200 key - - NI"),
    (KEYTOOL + "EC -J-Dkeystore.pkcs12.legacy", "0 200 - - - NI"),
    (KEYTOOL + "EC", REFUSED),
    (NSS + f"-c '{NSS_TRIPLE}' -C '{NSS_TRIPLE}' -M SHA-1", "0 200 key - - NI"),
    (NSS, REFUSED),
]


def expect(found, expected, what):
    assert found == expected, f"{what}: {found}, expected {expected}"


def compare(label, octets, password="abc123"):
    """Key and certificates are those that openssl reads."""
    read = pkcs12.File(octets, os.fsencode(password))
    said = run(f"openssl pkcs12 -legacy -nodes -in {file('p12', octets)} -passin 'pass:{password}'")
    keys, certificates = told(said)
    expect(read.certificates, certificates, label)
    for kind, value in read.attributes("CertificateBag", 1) if certificates else ():
        text = value[4:].decode("utf-16-be") if kind == pkcs12.FRIENDLY_NAME else value[4:].hex(" ").upper()
        assert f": {text}".encode() in said, f"{label}: {text}"
    if keys and read.key:
        info = inside(run("openssl pkcs8 -topk8 -nocrypt -outform DER", said))
        expect(read.key, info[2][1], label)
        if certificates:
            result, whole, certificate = shortcut(octets, os.fsencode(password))
            expect((result, inside(whole)[:3], certificate), (0, info, certificates[0]), f"{label}, shortcut")
    wrong = pkcs12.File(octets, os.fsencode(password) + b"4")
    assert wrong.summary.split()[1] == "300" and (not read.key or wrong.key != read.key), f"{label}: {wrong.summary}"


def shortcut(octets, password):
    key, key_size, certificate, size = (kind() for kind in (ctypes.c_uint8 * len(octets), U32) * 2)
    result = pkcs12.lib.ZA_PKCS12_GetKeyAndCertFromNspP12(
        octets, len(octets), password, len(password), key, ctypes.byref(key_size), certificate, ctypes.byref(size))
    return result, bytes(key)[:key_size.value], bytes(certificate)[:size.value]


def read_rows():
    for command, expected in ROWS:
        (FOLDER / "p12").unlink(missing_ok=True)
        run(command.format("Small"))
        octets = octets_of("p12")
        expect(pkcs12.File(octets).summary, expected, command)
        if expected.startswith("0"):
            compare(command, octets)


def read_cryptography():
    of_what = b"One", small.key, small.certificate
    old = (PrivateFormat.PKCS12.encryption_builder().kdf_rounds(2048).hmac_hash(hashes.SHA1())
           .key_cert_algorithm(theirs.PBES.PBESv1SHA1And3KeyTripleDESCBC))
    for count in range(len(others) + 1):
        more = [one.certificate for one in others[:count]]
        octets = theirs.serialize_key_and_certificates(*of_what, more, old.build(b"abc123"))
        expect(pkcs12.File(octets).summary, "0 200 key - NI NI" + " -" * count, f"cryptography, {count} more")
        compare("cryptography", octets)
    octets = theirs.serialize_key_and_certificates(*of_what, None, BestAvailableEncryption(b"abc123"))
    expect(pkcs12.File(octets).summary, REFUSED, "cryptography, best")


def read_passwords():
    for password in (b"", GBK):
        text = os.fsdecode(password)
        run((OPENSSL + "-legacy").format("Small").replace("pass:abc123", f"'pass:{text}'"))
        octets = octets_of("p12")
        expect(pkcs12.File(octets, password).summary, "0 200 key - NI NI", f"password {password}")
        compare(f"password {password}", octets, text)
    # openssl takes text in UTF-8 as such, the library octet by octet.
    run((OPENSSL + "-legacy").format("Small").replace("abc123", GBK.decode("gbk")))
    expect(pkcs12.File(octets_of("p12"), GBK.decode("gbk").encode()).summary.split()[1], "300", "UTF-8")


def read_other_ciphers():
    """Keys under a scheme that openssl derives in another way, and an encrypted key without a file around it."""
    run(OPENSSL.format("Small") + "-legacy -keypbe PBE-MD5-DES")
    result, verdict, key, *_ = pkcs12.File(octets_of("p12")).summary.split()
    assert result != "0" and (verdict, key) == ("300", "-"), f"PBE-MD5-DES: {result} {verdict}"
    der = run("openssl pkcs8 -topk8 -v1 PBE-SHA1-3DES -outform DER -in Small.key -passout pass:abc123")
    oid, key, salt = ((ctypes.c_uint8 * len(der))() for _ in range(3))
    sizes = [U32() for _ in range(4)]
    of_oid, of_key, of_salt, iterations = map(ctypes.byref, sizes)
    pkcs12.called("DealWithEncKeyBag", oid, of_oid, key, of_key, salt, of_salt, iterations, der, len(der))
    plain = pkcs12.written("PbeWithDigestAlgoAndDecrypt", oid, sizes[0], b"abc123", 6, salt, *sizes[2:], key, sizes[1])
    expect(plain, run("openssl pkcs8 -topk8 -nocrypt -outform DER -in Small.key"), "encrypted key")


for number in range(1, 5):
    file(f"{number}.pem", b"".join(octets_of(f"{one.name}.pem") for one in others[:number]))
(FOLDER / "nss").mkdir()
run("certutil -N -d sql:nss --empty-password")
run((OPENSSL + TRIPLE + "-macalg sha1").format("Usual").replace("One", "Usual"))
run("pk12util -i p12 -d sql:nss -W abc123")
for read_some in (read_rows, read_cryptography, read_passwords, read_other_ciphers):
    read_some()
