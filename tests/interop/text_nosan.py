#!/usr/bin/env python3
"""PEM and Base64 of the library are taken by openssl, certtool and Python, and theirs by the library."""
import base64
import ctypes
import os
import pathlib
import ssl
import subprocess

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])
certificate = pathlib.Path(os.environ["ZACERT_SOURCE_DIR"], "tests/data/der/certificate.der").read_bytes()


def run(*command, stdin):
    return subprocess.run(command, input=stdin, check=True, stdout=subprocess.PIPE).stdout


def called(name, octets, *more):
    length, out = ctypes.c_uint32(0), ctypes.create_string_buffer(2 * len(octets) + 80)
    assert getattr(lib, name)(octets, len(octets), out, ctypes.byref(length), *more) == 0, name
    return out.raw[:length.value]


pem = called("DER2PEM_data_format", certificate, b"-----BEGIN CERTIFICATE-----", b"-----END CERTIFICATE-----")
bare = called("DER2PEM_data_format", certificate, b"", b"")
for taken in (run("openssl", "x509", "-outform", "DER", stdin=pem),
              run("certtool", "-i", "--outder", stdin=pem),
              ssl.PEM_cert_to_DER_cert(pem.decode()),
              run("openssl", "base64", "-d", stdin=bare),
              base64.b64decode(bare)):
    assert taken == certificate
for text in (run("openssl", "x509", "-inform", "DER", stdin=certificate),
             run("certtool", "-i", "--inder", "--no-text", stdin=certificate),
             ssl.DER_cert_to_PEM_cert(certificate).encode(),
             run("openssl", "base64", stdin=certificate),
             base64.b64encode(certificate)):
    assert called("PEM2DER_data_format", text) == certificate, text
