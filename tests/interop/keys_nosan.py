#!/usr/bin/env python3
"""Exchanges keys and signatures with the openssl command.

ZACERT_LIB names the shared library. Every key is made anew by openssl; what the library makes of it
is given back to openssl, which has to take it. Exit status 1 when something is refused or differs.
"""
import ctypes
import os
import pathlib
import subprocess
import sys
import tempfile

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])
folder = tempfile.TemporaryDirectory()
failures = []


class RsaPublicKey(ctypes.Structure):
    _fields_ = [("octets", ctypes.c_uint8 * 512)]


class RsaPrivateKey(ctypes.Structure):
    _fields_ = [("octets", ctypes.c_uint8 * 1408)]


class Signature(ctypes.Structure):
    _fields_ = [("octets", ctypes.c_uint8 * 64)]


class EccPrivateKey(ctypes.Structure):
    _fields_ = [("curve", ctypes.c_uint8 * 196), ("x", ctypes.c_uint8 * 32),
                ("y", ctypes.c_uint8 * 32), ("d", ctypes.c_uint8 * 32)]


def expect(what, holds):
    print(("ok    " if holds else "FAIL  ") + what)
    if not holds:
        failures.append(what)


def openssl(*arguments, stdin=b""):
    return subprocess.run(["openssl", *arguments], input=stdin, capture_output=True)


def made_by_openssl(*arguments, stdin=b""):
    run = openssl(*arguments, stdin=stdin)
    if run.returncode != 0:
        sys.exit(f"openssl {' '.join(arguments)}: {run.stderr.decode()}")
    return run.stdout


def taken_by_openssl(what, *arguments, stdin):
    run = openssl(*arguments, stdin=stdin)
    expect(f"{what}: openssl {' '.join(arguments)}", run.returncode == 0)


def file_with(octets, name):
    path = pathlib.Path(folder.name) / name
    path.write_bytes(octets)
    return str(path)


def called(name, *arguments):
    result = getattr(lib, name)(*arguments)
    expect(f"{name} gives 0, not {result}" if result else name, result == 0)


def written(name, *inputs):
    """Calls a function of the two-call contract: for the length, then for the octets."""
    length = ctypes.c_uint32(0)
    called(name, *inputs, None, ctypes.byref(length))
    out = (ctypes.c_uint8 * max(length.value, 1))()
    called(name, *inputs, out, ctypes.byref(length))
    return bytes(out[:length.value])


def rsa(bits):
    pem = made_by_openssl("genrsa", "-traditional", str(bits))
    der = made_by_openssl("rsa", "-traditional", "-outform", "DER", stdin=pem)
    key = RsaPrivateKey()
    called("ZA_Decode_PrivateKey", ctypes.byref(key), der, len(der))
    private = written("ZA_Encode_PrivateKey", ctypes.byref(key))
    expect(f"RSA {bits}: private key comes back octet by octet", private == der)
    taken_by_openssl("RSAPrivateKey", "rsa", "-inform", "DER", "-check", "-noout", stdin=private)

    public_der = made_by_openssl("rsa", "-RSAPublicKey_out", "-outform", "DER", stdin=pem)
    key = RsaPublicKey()
    called("ZA_Decode_PublicKey", ctypes.byref(key), public_der, len(public_der))
    public = written("ZA_Encode_PublicKey", ctypes.byref(key))
    expect(f"RSA {bits}: public key comes back octet by octet", public == public_der)
    taken_by_openssl("RSAPublicKey", "rsa", "-RSAPublicKey_in", "-inform", "DER", "-noout",
                     stdin=public)

    pkcs8 = written("ZI_PKCS1to8KEY", der, len(der))
    expect(f"RSA {bits}: PKCS#8 as openssl writes it",
           pkcs8 == made_by_openssl("pkcs8", "-topk8", "-nocrypt", "-outform", "DER", stdin=pem))
    taken_by_openssl("PKCS#8", "pkey", "-inform", "DER", "-check", "-noout", stdin=pkcs8)


def elliptic_curve(name):
    pem = made_by_openssl("ecparam", "-name", name, "-genkey", "-noout")
    der = made_by_openssl("ec", "-outform", "DER", stdin=pem)
    key = EccPrivateKey()
    length = ctypes.c_uint32(0)
    called("ZACERT_DecodeEccPriKey_New", der, len(der), ctypes.byref(key), ctypes.byref(length))
    own_form = written("ZACERT_EncodeEccPriKey", ctypes.byref(key), ctypes.sizeof(key))
    taken_by_openssl(f"{name}: own form is DER", "asn1parse", "-inform", "DER", stdin=own_form)
    curve = next(part for part in (b"\x06\x08\x2a\x86\x48\xce\x3d\x03\x01\x07",
                                   b"\x06\x08\x2a\x81\x1c\xcf\x55\x01\x82\x2d") if part in der)
    content = b"\x02\x01\x01" + curve + b"".join(
        b"\x13\x20" + bytes(field) for field in (key.d, key.x, key.y))
    container = b"\x30" + bytes([len(content)]) + content
    for form, octets in (("own form", own_form), ("container", container), ("SEC 1", der)):
        sec1 = written("ZACERT_EcPrivateZqcspDerToCertDer", octets, len(octets))
        expect(f"{name}: {form} gives the key openssl wrote", sec1 == der)
        taken_by_openssl(f"{name}: {form}", "ec", "-inform", "DER", "-check", "-noout", stdin=sec1)
    return pem


def ecdsa(pem):
    private = file_with(pem, "key.pem")
    public = file_with(made_by_openssl("ec", "-pubout", stdin=pem), "public.pem")
    # Enough of them that short and negative-looking halves occur.
    for number in range(40):
        text = f"text {number}".encode()
        der = made_by_openssl("dgst", "-sha256", "-sign", private, stdin=text)
        signature = Signature()
        called("ZA_Decode_DerDataToECCSignStruct", ctypes.byref(signature), der, len(der))
        again = written("ZA_Encode_ECCSignStructToDerData", ctypes.byref(signature))
        expect(f"ECDSA signature {number} comes back octet by octet", again == der)
        taken_by_openssl("ECDSA", "dgst", "-sha256", "-verify", public, "-signature",
                         file_with(again, "signature"), stdin=text)


for size in (1024, 2048):
    rsa(size)
elliptic_curve("SM2")
ecdsa(elliptic_curve("prime256v1"))
print(f"{len(failures)} failures")
sys.exit(1 if failures else 0)
