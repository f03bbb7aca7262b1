#!/usr/bin/env python3
"""Certificates that the library issues, keys and signatures by openssl: who accepts them, and who does not and why."""
import base64
import ctypes
import hashlib
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import warnings

from cryptography import x509
from cryptography.hazmat.primitives.asymmetric import ec, padding, rsa

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])
folder = tempfile.TemporaryDirectory()
FOLDER = pathlib.Path(folder.name)

VERSION, SERIAL, INNER, OUTER, FROM, TO = 4, 5, 6, 2, 29, 30
ISSUER_O, ISSUER_CN, SUBJECT_O, SUBJECT_CN = 12, 14, 36, 38
KEY_ALGORITHM, KEY, CURVE = 53, 54, 3003
AKI, SKI, KEY_USAGE, BC_CRITICAL, CA_FLAG, PATH_LENGTH = 65, 85, 87, 119, 120, 121
SAN_DNS, SAN_IP, PURPOSES, CRL_URI, OCSP_URI, POLICY, CPS = 505, 510, 129, 131, 136, 92, 93


def run(*command, stdin=b""):
    return subprocess.run([str(part) for part in command], input=stdin, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT)


def openssl(*arguments, stdin=b""):
    done = run("openssl", *arguments, stdin=stdin)
    assert done.returncode == 0, done.stdout
    return done.stdout


def called(name, *arguments):
    result = getattr(lib, name)(*arguments)
    assert result == 0, f"{name}: {result}"


def written(name, *inputs):
    length = ctypes.c_uint32(0)
    called(name, *inputs, None, ctypes.byref(length))
    out = (ctypes.c_uint8 * max(length.value, 1))()
    called(name, *inputs, out, ctypes.byref(length))
    return bytes(out[:length.value])


class Key:
    """A key file, what signing with it takes, and the identifiers of key and signature."""

    def __init__(self, name, command, sign, algorithm, signature, curve=None):
        self.name, self.sign, self.signature = name, sign, bytes.fromhex(signature)
        self.path = FOLDER / f"{name}.key"
        self.path.write_bytes(openssl(*command.split()))
        spki = openssl("pkey", "-in", self.path, "-pubout", "-outform", "DER")
        self.attributes = {KEY_ALGORITHM: bytes.fromhex(algorithm)}
        if curve is None:
            self.attributes[KEY] = openssl("rsa", "-in", self.path, "-RSAPublicKey_out", "-outform", "DER")[-270:]
        else:
            # The library's record: the curve's numbers, which issuing does not need, and the point.
            record = bytes(192) + b"\x00\x01\x00\x01" + spki[-64:]
            self.attributes[KEY] = written("ZACERT_EncodeEccPubKey", record, len(record))
            self.attributes[CURVE] = bytes.fromhex(curve)
        self.identifier = hashlib.sha1(spki).digest()


@ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.POINTER(ctypes.c_uint8), ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint8),
                  ctypes.POINTER(ctypes.c_uint32), ctypes.c_void_p)
def sign(octets, length, out, out_length, context):
    """The key octets are the arguments of `openssl dgst`."""
    if not out:
        return 0
    arguments = ctypes.string_at(context).decode().split()
    signature = openssl("dgst", *arguments, stdin=bytes(octets[:length]))
    if len(signature) > out_length[0]:
        return 1
    ctypes.memmove(out, signature, len(signature))
    out_length[0] = len(signature)
    return 0


def issue(issuer, subject, attributes, ca=None, create="ZACert_CreateCertEncodeCtx_Ex"):
    """The DER of a certificate: of a CA itself, or issued by the one whose DER is given."""
    context = ctypes.c_void_p()
    if ca is None:
        called("ZACert_CreateCertEncodeCtx", ctypes.byref(context))
        attributes = {ISSUER_O: b"Org", ISSUER_CN: issuer.name.encode()} | attributes
    else:
        called(create, ctypes.byref(context), ca, len(ca))
    now = int(time.time())
    common_name = subject.name.encode() + (b" end" if ca else b"")
    values = {VERSION: 2, FROM: now - 3600, TO: now + 30 * 86400, SERIAL: b"\x2a", INNER: issuer.signature,
              OUTER: issuer.signature, SUBJECT_O: b"Org", SUBJECT_CN: common_name,
              SKI: subject.identifier, **subject.attributes, **attributes}
    for identifier, value in values.items():
        if isinstance(value, bytes):
            called("ZACert_SetCertAttributeChar", context, identifier, value, len(value))
        elif value is not None:
            called("ZACert_SetCertAttributeInt", context, identifier, value)
    arguments = f"{issuer.sign} -sign {issuer.path}\0".encode()
    called("ZACert_SetCertSignFunc", context, sign, arguments, len(arguments))
    der = written("ZACert_EncodeCert", context)
    called("ZACert_DestroyCertEncodeCtx", context)
    return der


# ---- Who is asked

def by_openssl(ca, cert, *options):
    if ca.name == "SM2":
        options += ("-vfyopt", "distid:1234567812345678")
    return run("openssl", "verify", *options, "-CAfile", ca.pem, cert.pem)


def by_strict_openssl(ca, cert):
    return by_openssl(ca, cert, "-x509_strict")


def by_certtool(ca, cert):
    return run("certtool", "--verify", "--load-ca-certificate", ca.pem, "--infile", cert.pem)


def by_keytool(_, cert):
    return run("keytool", "-printcert", "-file", cert.der_file)


def by_cryptography(ca, cert):
    """A process of its own, so that a refusal is an exit status as with the others."""
    return run(sys.executable, __file__, ca.der_file, cert.der_file)


def check_with_cryptography(ca_file, cert_file):
    warnings.simplefilter("ignore")
    key = x509.load_der_x509_certificate(pathlib.Path(ca_file).read_bytes()).public_key()
    cert = x509.load_der_x509_certificate(pathlib.Path(cert_file).read_bytes())
    assert len(cert.extensions) > 0 and cert.issuer and cert.subject
    signed = (cert.signature, cert.tbs_certificate_bytes)
    if isinstance(key, rsa.RSAPublicKey):
        key.verify(*signed, padding.PKCS1v15(), cert.signature_hash_algorithm)
    else:
        key.verify(*signed, ec.ECDSA(cert.signature_hash_algorithm))


TOOLS = {"openssl": by_openssl, "openssl -x509_strict": by_strict_openssl, "certtool": by_certtool,
         "keytool": by_keytool, "cryptography": by_cryptography}


class Issued:
    def __init__(self, name, der):
        self.name, self.der = name, der
        self.der_file, self.pem = FOLDER / f"{name}.der", FOLDER / f"{name}.pem"
        self.der_file.write_bytes(der)
        # Not through openssl, which does not read all of them.
        body = base64.encodebytes(der).decode().rstrip()
        self.pem.write_text(f"-----BEGIN CERTIFICATE-----\n{body}\n-----END CERTIFICATE-----\n")


def main():
    ec_key = "2A8648CE3D0201"
    rsa_key = Key("RSA", "genrsa 2048", "-sha256", "2A864886F70D010101", "2A864886F70D01010B")
    p256 = Key("P-256", "ecparam -name prime256v1 -genkey -noout", "-sha256", ec_key, "2A8648CE3D040302",
               "2A8648CE3D030107")
    sm2 = Key("SM2", "ecparam -name SM2 -genkey -noout", "-sm3 -sigopt distid:1234567812345678", ec_key,
              "2A811CCF55018375", "2A811CCF5501822D")
    root = {CA_FLAG: b"\1", KEY_USAGE: b"\x06"}
    full = {KEY_USAGE: b"\x80", PURPOSES: b"\xC0\0\0\0", SAN_DNS: b"a.example", SAN_IP: b"\xC0\0\2\1",
            CRL_URI: b"http://a.example/crl", OCSP_URI: b"http://a.example/ocsp", POLICY: b"\x2A\3",
            CPS: b"http://a.example/cps"}
    # What is set beside the rest, how the context is made, and who refuses it.
    rows = [
        ("RSA, end entity", rsa_key, {}, "", {}),
        ("RSA, intermediate", rsa_key, {CA_FLAG: b"\1", PATH_LENGTH: b"\0", KEY_USAGE: b"\6"}, "", {}),
        ("RSA, Chinese names", rsa_key, {SUBJECT_O: "北京公司".encode("gb18030")}, "", {}),
        ("ECDSA, end entity", p256, {}, "", {}),
        ("SM2, end entity", sm2, {}, "",
         {tool: "does not know SM2" for tool in ("certtool", "keytool", "cryptography")}),
        ("basic constraints not critical", rsa_key, {BC_CRITICAL: b"\0"}, "",
         {"cryptography": "FALSE is written, which DER leaves out"}),
        ("no version", rsa_key, {VERSION: None}, "",
         {tool: "extensions in version 1" for tool in TOOLS if tool != "openssl"}),
        ("issuer's name in the key identifier", rsa_key, {AKI: None}, "_ForAKid",
         {tool: "the name is not that of the CA's issuer" for tool in TOOLS if "openssl" in tool}),
        ("no validity", rsa_key, {FROM: None, TO: None}, "",
         {tool: "GeneralizedTime with two year digits" for tool in TOOLS}),
        ("no usage bit", rsa_key, {KEY_USAGE: b"\0"}, "",
         {tool: "no bit is set" for tool in TOOLS if "openssl" in tool}),
    ]
    roots = {key: Issued(key.name, issue(key, key, root)) for key in (rsa_key, p256, sm2)}
    differences = 0
    for label, key, attributes, suffix, refusals in rows:
        ca = roots[key]
        values = full | {AKI: key.identifier} | attributes
        cert = Issued(label, issue(key, key, values, ca.der, "ZACert_CreateCertEncodeCtx_Ex" + suffix))
        for tool, ask in TOOLS.items():
            answer = ask(ca, cert)
            accepted = answer.returncode == 0
            if accepted == (tool in refusals):
                differences += 1
                print(f"{label}: {tool}: {'accepted' if accepted else answer.stdout.decode(errors='replace')}")
        if "Chinese" in label:
            shown = openssl("x509", "-in", cert.pem, "-noout", "-subject", "-nameopt", "utf8").decode()
            assert "O=北京公司" in shown, shown
        print(f"{label}: " + (", ".join(f"{tool} refuses ({why})" for tool, why in refusals.items()) or "all accept"))
    sys.exit(1 if differences else 0)


if __name__ == "__main__":
    if len(sys.argv) == 3:
        check_with_cryptography(*sys.argv[1:])
    else:
        main()
