#!/usr/bin/env python3
"""What the library signs, encrypts and authenticates openssl takes, and the other way round."""
import ctypes
import os
import pathlib
import subprocess
import tempfile

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])

DIGESTS = {5: "md5", 7: "sha1", 9: "sha256", 11: "sha384", 13: "sha512"}
TEXT = bytes(range(200))


def openssl(*arguments, stdin=b""):
    return subprocess.run(["openssl", *map(str, arguments)], input=stdin, check=True, stdout=subprocess.PIPE).stdout


def called(name, *arguments):
    assert getattr(lib, name)(*arguments) == 0, name


def pair(octets):
    return octets, ctypes.c_uint32(len(octets))


def written(name, *arguments, outputs_first=False):
    """Octets of up to 8192 that a function writes before or behind its other arguments."""
    out, length = (ctypes.c_uint8 * 8192)(), ctypes.c_uint32(0)
    outputs = (out, ctypes.byref(length))
    called(name, *((*outputs, *arguments) if outputs_first else (*arguments, *outputs)))
    return bytes(out[:length.value])


def key_files(folder, generate):
    """A key pair of the library: its records, and files of it that openssl reads."""
    public, private = (ctypes.c_uint8 * 516)(), (ctypes.c_uint8 * 1412)()
    called(generate, public, private)
    for name, record, kind in (("public", public, "Public"), ("private", private, "Private")):
        behind_bits = ctypes.byref(record, 4)
        (folder / name).write_bytes(written(f"ZA_Encode_{kind}Key", behind_bits))
    openssl("rsa", "-check", "-inform", "DER", "-noout", "-in", folder / "private")
    (folder / "spki").write_bytes(openssl("rsa", "-RSAPublicKey_in", "-inform", "DER", "-in", folder / "public"))
    return public, private


def signatures(folder, public, private):
    signature = folder / "signature"
    for number, name in DIGESTS.items():
        sig, length = (ctypes.c_uint8 * 256)(), ctypes.c_uint32(0)
        called("ZA_PKCS7_SignedData", number, TEXT, len(TEXT), sig, ctypes.byref(length), private)
        signature.write_bytes(bytes(sig[:length.value]))
        openssl("dgst", f"-{name}", "-verify", folder / "spki", "-signature", signature, stdin=TEXT)

        theirs = openssl("dgst", f"-{name}", "-keyform", "DER", "-sign", folder / "private", stdin=TEXT)
        for text, expected in ((TEXT, 1), (TEXT[1:], 0)):
            verdict = ctypes.c_uint32(77)
            called("ZA_PKCS7_VerifySignature", number, text, len(text), *pair(theirs), public, ctypes.byref(verdict))
            assert verdict.value == expected, name
        digest = written("ZA_PKCS7_DigestMessage", number, TEXT, len(TEXT))
        assert digest == openssl("dgst", "-binary", f"-{name}", stdin=TEXT), name


def encryption(folder, public, private):
    key = ("-inkey", folder / "private", "-keyform", "DER")
    for text in (b"", b"x", TEXT[:117]):
        cipher = written("ZA_PKCS7_RSAPublicEncrypt", *pair(text), public, outputs_first=True)
        assert openssl("pkeyutl", "-decrypt", *key, stdin=cipher) == text
        theirs = openssl("pkeyutl", "-encrypt", "-pubin", "-inkey", folder / "spki", stdin=text)
        assert written("ZA_PKCS7_RSAPrivateDecrypt", *pair(theirs), private, outputs_first=True) == text
    block = written("ZA_PKCS7_RSAPrivateEncrypt", *pair(TEXT[:40]), private, outputs_first=True)
    assert openssl("pkeyutl", "-verifyrecover", "-pubin", "-inkey", folder / "spki", stdin=block) == TEXT[:40]
    theirs = openssl("pkeyutl", "-sign", *key, stdin=TEXT[:40])
    assert written("ZA_PKCS7_RSAPublicDecrypt", *pair(theirs), public, outputs_first=True) == TEXT[:40]


def aes_and_hmac():
    key, iv = os.urandom(16), os.urandom(16)
    for mode, name, given in ((1, "ecb", ()), (2, "cbc", ("-iv", iv.hex()))):
        for length in (1, 15, 16, 200):
            text = TEXT[:length]
            cipher = written("ZA_PKCS12_AESEncrypt", mode, *pair(key), *pair(iv), *pair(text))
            options = (f"-aes-128-{name}", "-K", key.hex(), *given)
            assert cipher == openssl("enc", *options, stdin=text), name
            assert openssl("enc", "-d", *options, stdin=cipher) == text, name
            assert written("ZA_PKCS12_AESDecrypt", mode, *pair(key), *pair(iv), *pair(cipher)) == text, name
    for number, name in ((5, "MD5"), (7, "SHA1")):
        for length in (1, 64, 65, 256):
            key = os.urandom(length)
            mac = openssl("mac", "-binary", "-digest", name, "-macopt", f"hexkey:{key.hex()}", "HMAC", stdin=TEXT)
            assert written("ZA_PKCS12_HMAC", number, *pair(key), *pair(TEXT)) == mac, name


with tempfile.TemporaryDirectory() as place:
    for function in ("ZA_PKCS7_GenRSAKeyPair", "ZA_PKCS7_GenRSAKeyPair_2048"):
        records = key_files(pathlib.Path(place), function)
        signatures(pathlib.Path(place), *records)
        encryption(pathlib.Path(place), *records)
aes_and_hmac()
