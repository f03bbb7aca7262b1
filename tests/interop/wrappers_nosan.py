#!/usr/bin/env python3
"""What the wrappers make of certificate and PKCS#12 files openssl takes, and the other way round."""
import ctypes
import os

from support.peers import FOLDER, certificate, file, run

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])
TEXT = bytes(range(256)) * 31
PASSWORD = b"abc123"


def path(name):
    return str(FOLDER / name).encode()


def pair(octets):
    return octets, len(octets)


def written(name, *arguments):
    out, length = ctypes.create_string_buffer(17000), ctypes.c_uint32(0)
    assert getattr(lib, name)(*arguments, out, ctypes.byref(length)) == 0, name
    return out.raw[:length.value]


def files(bits):
    certificate("person", f"rsa:{bits} -subj /CN=person")
    run("openssl x509 -in person.pem -outform DER -out person.der")
    file("person.pub", run("openssl x509 -in person.pem -noout -pubkey"))
    run("openssl pkcs12 -export -legacy -in person.pem -inkey person.key -out person.p12 -passout pass:abc123")


def signatures():
    cert, pfx = path("person.der"), (path("person.p12"), *pair(PASSWORD))
    for text in (b"", TEXT, os.urandom(100000)):
        file("signature", bytes.fromhex(written("Pfx_SignData_KOVA", *pfx, *pair(text)).decode()))
        run("openssl dgst -sha1 -verify person.pub -signature signature", text)
        theirs = run("openssl dgst -sha1 -sign person.key", text).hex().encode()
        assert lib.Pfx_VerifyData_KOVA(cert, *pair(text), *pair(theirs)) == 0
        assert lib.Pfx_VerifyData_KOVA(cert, *pair(text + b"!"), *pair(theirs)) == -1
        sha256 = run("openssl dgst -sha256 -sign person.key", text).hex().encode()
        assert lib.Pfx_VerifyData_KOVA(cert, *pair(text), *pair(sha256)) == -1


def encryption(bits):
    pfx = (path("person.p12"), *pair(PASSWORD))
    for text in (b"", b"x", TEXT[:bits // 8 - 11]):
        cipher = bytes.fromhex(written("PubKey_Encrypt_KOVA", path("person.der"), *pair(text)).decode())
        assert run("openssl pkeyutl -decrypt -inkey person.key -pkeyopt rsa_padding_mode:pkcs1", cipher) == text
        theirs = run("openssl pkeyutl -encrypt -pubin -inkey person.pub -pkeyopt rsa_padding_mode:pkcs1", text)
        assert written("PrivateKey_Decrypt_KOVA", *pfx, *pair(theirs.hex().encode())) == text


def packages():
    for size in (1, 15, 16, 17, len(TEXT)):
        key, text = os.urandom(16).hex(), TEXT[:size]
        theirs = run(f"openssl enc -aes-128-ecb -K {key}", text).hex().encode()
        assert written("PkgEncrypt_KOVA", *pair(key.encode()), *pair(text)) == theirs.upper()
        assert written("PkgDecrypt_KOVA", *pair(key.encode()), *pair(theirs)) == text


for key_bits in (1024, 2048):
    files(key_bits)
    signatures()
    encryption(key_bits)
packages()
