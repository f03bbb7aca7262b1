"""PKCS#12 files through the library: what it writes, and what it reads in files."""
import ctypes
import functools

from support import pkcs7
from support.lists import tlv
from support.pkcs7 import U32, VOID, lib

PASSWORD = b"abc123"
FRIENDLY_NAME, LOCAL_KEY_ID, KEY_USAGE = map(bytes.fromhex, ("2A864886F70D010914", "2A864886F70D010915", "551D0F"))
LETTERS = {FRIENDLY_NAME: "N", LOCAL_KEY_ID: "I", KEY_USAGE: "U"}
called = functools.partial(pkcs7.called, family="ZA_PKCS12_")
written = functools.partial(pkcs7.written, family="ZA_PKCS12_")


def friendly_name(text):
    return FRIENDLY_NAME, tlv(0x31, tlv(0x1E, text.encode("utf-16-be")))


def local_key_id(octets):
    return LOCAL_KEY_ID, tlv(0x31, tlv(4, octets))


def created(name):
    """A context. It lasts as long as the process."""
    context = VOID()
    called(name, ctypes.byref(context))
    return context


def writer(key, certificates=(), of_key=(), of_bag=(), of_certificates=()):
    """A context to write with; attributes of certificates come with the number of theirs."""
    context = created("CreateEncodePfx")
    called("SetPrivateKey", context, key, len(key))
    for certificate in certificates:
        called("SetCertificate", context, certificate, len(certificate))
    for place, attributes in (("PrivateKey", of_key), ("PrivateKeyBag", of_bag), ("CertificateBag", of_certificates)):
        for kind, value, *number in attributes:
            called(f"Set{place}_Attribute", context, kind, len(kind), value, len(value), *number)
    return context


def encoded(context, password=PASSWORD, kind=None):
    """The file; with `kind`, which is 0 for RSA, of a key of any length."""
    name, choice = ("EncodePFX", ()) if kind is None else ("EncodePFXNEW", (kind,))
    return written(name, context, *choice, password, len(password))


class File:
    """A decoded file: the decoder's result and verdict, and what came out."""

    def __init__(self, der, password=PASSWORD):
        self.context, verdict = created("CreateDecodePfx"), U32(77)
        result = lib.ZA_PKCS12_DecodePFX(self.context, password, len(password), der, len(der), ctypes.byref(verdict))
        self.key = b""
        if lib.ZA_PKCS12_GetPrivateKey(self.context, None, ctypes.byref(U32())) == 0:
            self.key = written("GetPrivateKey", self.context)
        self.certificates = []
        while certificate := self.certificate(len(self.certificates) + 1):
            self.certificates.append(certificate)
        attributes = [self.letters("PrivateKey"), self.letters("PrivateKeyBag"),
                      *(self.letters("CertificateBag", number + 1) for number in range(len(self.certificates)))]
        # As "0 200 key - NI NI": attributes of the key, of its bag, of every certificate.
        self.summary = " ".join([str(result), str(verdict.value), "key" if self.key else "-", *attributes])

    def certificate(self, number):
        """Nothing, not even a length, is written where there is none."""
        out, length = (ctypes.c_uint8 * 4096)(), U32()
        called("GetCertificate", self.context, out, ctypes.byref(length), number)
        return bytes(out)[:length.value]

    def attributes(self, place, *certificate):
        kind, value = (ctypes.c_uint8 * 4096)(), (ctypes.c_uint8 * 4096)()
        sizes, found = (U32(), U32()), []
        while (result := getattr(lib, f"ZA_PKCS12_Get{place}_Attribute")(
                self.context, kind, ctypes.byref(sizes[0]), value, ctypes.byref(sizes[1]), len(found) + 1,
                *certificate)) == 0:
            found.append((bytes(kind)[:sizes[0].value], bytes(value)[:sizes[1].value]))
        assert result == 121, result
        return found

    def letters(self, place, *certificate):
        return "".join(LETTERS.get(kind, "x") for kind, _ in self.attributes(place, *certificate)) or "-"
