#!/usr/bin/env python3
"""Revocation lists written here are accepted by others, and theirs are read here."""
import ctypes
import os
import pathlib
import re
import subprocess
import tempfile
import time

from cryptography import x509

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])
U32, POINTER = ctypes.c_uint32, ctypes.c_void_p
SIGN = ctypes.CFUNCTYPE(ctypes.c_int32, POINTER, U32, POINTER, ctypes.POINTER(U32), POINTER)
ALGORITHMS = [(number, bytes.fromhex("2a864886f70d01010b")) for number in (1002, 1005)]
REASONS = {1: ("key_compromise", "Key Compromise"), 4: ("superseded", "Superseded"), None: (None, None)}
REVOKED = [(b"\x7f" * 16, 1709294400, 1), (b"\xff\x01", 1709384401, None), (b"\x03", 1709474402, 4)]
EXTENSIONS = [(1053, b"\x05"), (1033, b"\x11" * 20), (1057, b"http://crl.example.org/a"), (1056, b"\x01")]
LISTS = [  # name, version, entries, extensions, who refuses it
    ("entries, reasons and extensions", 1, REVOKED, EXTENSIONS, ()),
    ("a delta list", 1, REVOKED[:1], [*EXTENSIONS, (1055, b"\x04"), (1054, b"\x01")], ()),
    ("no entry, no extension", 1, [], [], ()),
    # A version that is written although it is 0: for these two that is no version at all.
    ("version 0", 0, [REVOKED[1]], [], ("keytool", "cryptography")),
]


def run(*command):
    return subprocess.run(list(map(str, command)), check=False, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT).stdout.decode()


def called(name, *arguments):
    assert getattr(lib, name)(*arguments) == 0, name


def two_calls(name, *inputs):
    length = U32(0)
    called(name, *inputs, None, ctypes.byref(length))
    out = (ctypes.c_uint8 * max(length.value, 1))()
    called(name, *inputs, out, ctypes.byref(length))
    return bytes(out[:length.value])


def written(folder, version, revoked, extensions):
    """A list whose issuer comes from the CA's certificate, signed by openssl."""
    @SIGN
    def sign(octets, size, out, length, _):
        if out:
            signature = subprocess.run(["openssl", "dgst", "-sha256", "-sign", folder / "key"], check=True,
                                       input=ctypes.string_at(octets, size), stdout=subprocess.PIPE).stdout
            ctypes.memmove(out, signature, len(signature))
        length[0] = 256
        return 0

    crl, ca = POINTER(), (folder / "ca.der").read_bytes()
    called("ZACert_CreateCrlEncodeCtx_Ex", ctypes.byref(crl), ca, len(ca))
    attributes = [(1004, version), (1027, 1704067200), (1028, 2082758400), *ALGORITHMS, *extensions]
    for serial, date, reason in revoked:
        attributes += [(1029, serial), (1030, date)] + ([(1063, bytes([reason]))] if reason else [])
    for number, value in attributes:
        is_int = isinstance(value, int)
        called("ZACert_SetCrlAttribute" + ("Int" if is_int else "Char"), crl, number, value,
               *(() if is_int else (len(value),)))
    called("ZACert_SetCrlSignFunc", crl, sign, b"k", 1)
    der = two_calls("ZACert_EncodeCrl", crl)
    called("ZACert_DestroyCrlEncodeCtx", crl)
    return der


def entries(der):
    """Serial number, date and reason of every entry, as the library reads them."""
    crl, number, found = POINTER(), U32(), []
    called("ZACert_CreateCrlDecodeCtx", ctypes.byref(crl))
    called("ZACert_DecodeCrl", crl, der, len(der))
    while serial := two_calls("ZACert_GetCrlAttributeChar", crl, 1029):
        called("ZACert_GetCrlAttributeInt", crl, 1030, ctypes.byref(number))
        reason = two_calls("ZACert_GetCrlAttributeChar", crl, 1063)
        found.append((serial, number.value, reason[0] if reason else None))
        called("ZACert_GetCrlAttributeChar", crl, 1031, None, ctypes.byref(number))
    called("ZACert_DestroyCrlDecodeCtx", crl)
    return found


def check(folder, name, der, revoked, refused_by):
    path, numbers = folder / "list.crl", [int.from_bytes(serial, "big") for serial, _, _ in revoked]
    path.write_bytes(der)
    assert entries(der) == revoked, name
    text = run("openssl", "crl", "-inform", "der", "-in", path, "-noout", "-text", "-CAfile", folder / "ca.pem")
    assert "verify OK" in text, text
    assert [int(number, 16) for number in re.findall(r"Serial Number: (\w+)", text)] == numbers, text
    assert re.findall(r"Reason Code: \n *(.*)", text) == [REASONS[r][1] for _, _, r in revoked if r], text
    assert re.findall(r"Revocation Date: (.*)", text) == \
        [time.strftime("%b %e %T %Y GMT", time.gmtime(date)) for _, date, _ in revoked], text
    text = run("certtool", "--crl-info", "--inder", "--infile", path)
    assert (f"Revoked certificates ({len(revoked)})" if revoked else "No revoked certificates") in text, text
    assert ("keytool error" in run("keytool", "-printcrl", "-file", path)) == ("keytool" in refused_by), name
    try:
        found = [(entry.serial_number, next((e.value.reason.name for e in entry.extensions), None))
                 for entry in x509.load_der_x509_crl(der)]
    except (x509.InvalidVersion, ValueError):
        found = None
    assert found == (None if "cryptography" in refused_by else
                     [(n, REASONS[r][0]) for n, (_, _, r) in zip(numbers, revoked)]), name


def read_theirs(folder):
    (folder / "index").write_text("".join(f"R\t350101000000Z\t{entry}\tunknown\t/CN=x\n" for entry in (
        "240301120000Z,keyCompromise\t7F", "240302130001Z\tFF01", "240303140002Z,superseded\t03")))
    (folder / "cnf").write_text(f"[ca]\ndefault_ca=d\n[d]\ndatabase={folder}/index\ndefault_md=sha256\n")
    ca = folder / "ca.pem"
    run("openssl", "ca", "-gencrl", "-config", folder / "cnf", "-keyfile", folder / "key", "-cert", ca,
        "-crldays", 9, "-out", folder / "pem")
    run("openssl", "crl", "-in", folder / "pem", "-outform", "der", "-out", folder / "openssl.crl")
    assert entries((folder / "openssl.crl").read_bytes()) == \
        [(b"\x03", 1709474402, 4), (b"\x7f", 1709294400, 1), (b"\xff\x01", 1709384401, None)]  # it sorts
    (folder / "template").write_text('crl_number = 7\ncrl_revocation_date = "2024-03-05 10:11:12 UTC"\n')
    run("certtool", "--generate-crl", "--load-ca-privkey", folder / "key", "--load-ca-certificate", ca,
        "--load-certificate", ca, "--template", folder / "template", "--outder", "--outfile", folder / "tls.crl")
    assert entries((folder / "tls.crl").read_bytes()) == [(b"\x7e" * 20, 1709633472, None)]


with tempfile.TemporaryDirectory() as place:
    base = pathlib.Path(place)
    run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", base / "key", "-out",
        base / "ca.pem", "-subj", "/C=DE/O=Example/CN=List CA", "-days", 30, "-set_serial", "0x" + "7E" * 20)
    run("openssl", "x509", "-in", base / "ca.pem", "-outform", "der", "-out", base / "ca.der")
    for label, number, listed, added, refusers in LISTS:
        check(base, label, written(base, number, listed, added), listed, refusers)
    read_theirs(base)
