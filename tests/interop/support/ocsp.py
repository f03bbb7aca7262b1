"""OCSP requests and responses through the library: what it writes, and what it says of those of others."""
import ctypes
import functools
import struct

from cryptography.hazmat.primitives import hashes
from cryptography.hazmat.primitives.asymmetric.padding import PKCS1v15
from cryptography.hazmat.primitives.serialization import Encoding, PublicFormat

from support import pkcs7
from support.pkcs7 import CRYPT, SHA1, U32, VOID, lib

called, written, created = (functools.partial(function, family="ZA_OCSP_")
                            for function in (pkcs7.called, pkcs7.written, pkcs7.created))
BASIC, SHA256_RSA = bytes.fromhex("2B0601050507300101"), bytes.fromhex("2A864886F70D01010B")
# Of an entry: algorithm, hashes of the issuer's name and key, serial number, and how both are given before.
NUMBERS = {"Request": (20, 18, 19, 15, 16, 17), "Response": (30, 27, 29, 25, 26, 28)}


def key_of(identity):
    return identity.certificate.public_key().public_bytes(Encoding.DER, PublicFormat.PKCS1)


def signature_of(key, octets):
    return key.sign(octets, PKCS1v15(), hashes.SHA256())


def entry(kind, issuer, serial, values=(), status=None):
    """A Request, or a SingleResponse with its status."""
    algorithm, _, _, *numbers = NUMBERS[kind]
    named = zip((algorithm, *numbers), (SHA1, serial, issuer.issuer, key_of(issuer)))
    context = created(f"Encode{kind}List", f"{kind}List", [*named, *values],
                      [(f"{kind}ListHash", *pkcs7.digest(SHA1))])
    if status:
        called("SetResponseList_CertStatus" + status[0], context, *status[1:])
    record = VOID()
    called(f"Encode{kind}List", context, ctypes.byref(record))
    return ctypes.string_at(*struct.unpack("PI", ctypes.string_at(record, 12)))  # it lasts, like the context


def encoded(kind, entries=(), values=(), key=None):
    """A Request or a Response; with a key it is signed."""
    @CRYPT
    def sign(octets, size, out, length, _):
        signature = signature_of(key, ctypes.string_at(octets, size))
        ctypes.memmove(out, signature, len(signature))
        length[0] = len(signature)
        return 0

    context = created("Encode" + kind, kind, values, [(kind + "Sign", sign, b"k")] if key else [])
    for one in entries:
        called(f"Set{kind}Single{kind}", context, one, len(one))
    return written("Encode" + kind, context)


class Decoded:
    """A decoded message, or an entry where the kind ends in List; `refused` is the decoder's code."""

    def __init__(self, kind, der):
        self.kind, self.context = kind, created("Decode" + kind)
        self.refused = getattr(lib, "ZA_OCSP_Decode" + kind)(self.context, der, len(der))

    def octets(self, number):
        return written(f"Get{self.kind}AttributeChar", self.context, number)

    def number(self, name, *which):
        value = U32()
        called(f"Get{self.kind}{name}", self.context, *which, ctypes.byref(value))
        return value.value

    def entries(self):
        """The facts of a request's."""
        out, length = (ctypes.c_uint8 * 4096)(), U32()
        for number in range(self.number("SingleRequestNum")):
            called("GetRequestSingleRequest", self.context, out, ctypes.byref(length), number + 1)
            yield facts("Request", bytes(out)[:length.value])


def facts(kind, der):
    """What an entry names a certificate by: algorithm, both hashes, serial number; and what a response says of it."""
    read = Decoded(kind + "List", der)
    assert read.refused == 0, (read.refused, der.hex())
    return (*map(read.octets, NUMBERS[kind][:4]), *([read.number("CertSatus")] if kind == "Response" else []))
