#!/usr/bin/env python3
"""Keys and signatures that openssl makes come back through the library; openssl takes them again."""
import ctypes
import os
import pathlib
import subprocess
import tempfile

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])


def openssl(*arguments, stdin=b""):
    return subprocess.run(["openssl", *arguments], input=stdin, check=True, stdout=subprocess.PIPE).stdout


def called(name, *arguments):
    assert getattr(lib, name)(*arguments) == 0, name


def written(name, *inputs):
    """Calls a function of the two-call contract: for the length, then for the octets."""
    length = ctypes.c_uint32(0)
    called(name, *inputs, None, ctypes.byref(length))
    out = (ctypes.c_uint8 * max(length.value, 1))()
    called(name, *inputs, out, ctypes.byref(length))
    return bytes(out[:length.value])


def read(name, size, der):
    """A decoder's record of `size` octets."""
    record = (ctypes.c_uint8 * size)()
    called(name, record, der, len(der))
    return record


def rsa(bits):
    pem = openssl("genrsa", "-traditional", str(bits))
    for kind, size, given, taken in (
            ("Private", 1408, ("-traditional",), ("-check",)),
            ("Public", 512, ("-RSAPublicKey_out",), ("-RSAPublicKey_in",))):
        der = openssl("rsa", *given, "-outform", "DER", stdin=pem)
        again = written(f"ZA_Encode_{kind}Key", read(f"ZA_Decode_{kind}Key", size, der))
        assert again == der, f"RSA {bits}: {kind} key"
        openssl("rsa", *taken, "-inform", "DER", "-noout", stdin=again)
    der = openssl("rsa", "-traditional", "-outform", "DER", stdin=pem)
    openssl("pkey", "-inform", "DER", "-check", stdin=written("ZI_PKCS1to8KEY", der, len(der)))


def elliptic_curve(name):
    pem = openssl("ecparam", "-name", name, "-genkey", "-noout")
    der = openssl("ec", "-outform", "DER", stdin=pem)
    record = (ctypes.c_uint8 * 292)()
    called("ZACERT_DecodeEccPriKey_New", der, len(der), record, ctypes.byref(ctypes.c_uint32()))
    own_form = written("ZACERT_EncodeEccPriKey", record, len(record))
    sec1 = written("ZACERT_EcPrivateZqcspDerToCertDer", own_form, len(own_form))
    assert sec1 == der, name
    openssl("ec", "-inform", "DER", "-check", "-noout", stdin=sec1)
    return pem


def ecdsa(pem, folder):
    private, public, signature = (folder / name for name in ("private", "public", "signature"))
    private.write_bytes(pem)
    public.write_bytes(openssl("ec", "-pubout", stdin=pem))
    # Enough of them that short and negative-looking halves occur.
    for number in range(40):
        text = f"text {number}".encode()
        der = openssl("dgst", "-sha256", "-sign", private, stdin=text)
        record = read("ZA_Decode_DerDataToECCSignStruct", 64, der)
        signature.write_bytes(written("ZA_Encode_ECCSignStructToDerData", record))
        assert signature.read_bytes() == der, der.hex()
        openssl("dgst", "-sha256", "-verify", public, "-signature", signature, stdin=text)


for size in (1024, 2048):
    rsa(size)
elliptic_curve("SM2")
with tempfile.TemporaryDirectory() as folder:
    ecdsa(elliptic_curve("prime256v1"), pathlib.Path(folder))
