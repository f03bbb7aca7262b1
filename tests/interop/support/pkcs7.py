"""PKCS#7 messages through the library: what it writes, and what it says of messages."""
import ctypes
import os
import sys

from cryptography.hazmat.primitives.ciphers import Cipher, algorithms, modes

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])
U32, VOID = ctypes.c_uint32, ctypes.c_void_p
CRYPT = ctypes.CFUNCTYPE(ctypes.c_int32, VOID, U32, VOID, ctypes.POINTER(U32), VOID)

DATA, SHA1, SHA256, RSA, AES128_CBC, CONTENT_TYPE, MESSAGE_DIGEST = map(bytes.fromhex, (
    "2A864886F70D010701", "2B0E03021A", "608648016503040201", "2A864886F70D010101", "608648016503040102",
    "2A864886F70D010903", "2A864886F70D010904"))
KEY, IV = os.urandom(16), os.urandom(16)


@CRYPT
def aes_encrypt(octets, size, out, length, block):
    key = ctypes.string_at(block, 32)
    return lib.ZA_PKCS12_AESEncrypt(2, key[:16], 16, key[16:], 16, VOID(octets), size, VOID(out), length)


@CRYPT
def aes_decrypt(octets, size, out, length, block):
    key = ctypes.string_at(block, 32)
    plain = Cipher(algorithms.AES(key[:16]), modes.CBC(key[16:])).decryptor().update(ctypes.string_at(octets, size))
    length[0] = size - plain[-1]
    ctypes.memmove(out, plain, length[0])
    return 0


def called(name, *arguments, family="ZA_PKCS7_"):
    result = getattr(lib, family + name)(*arguments)
    assert result == 0, f"{name}: {result}"


def read(name, context, *index, kind=U32):
    """A number, or a handle, that a getter stores."""
    place = kind()
    called(name, context, ctypes.byref(place), *index)
    return place.value if kind is U32 else place


def written(name, *inputs, family="ZA_PKCS7_"):
    """What comes is as long as the library said before."""
    length = U32()
    called(name, *inputs, None, ctypes.byref(length), family=family)
    size = length.value
    out = (ctypes.c_uint8 * max(size, 1))()
    called(name, *inputs, out, ctypes.byref(length), family=family)
    assert length.value == size, f"{name}: {length.value} octets, {size} before"
    return bytes(out)[:size]


def install(context, slot, function, block, family="ZA_PKCS7_"):
    function = ctypes.cast(getattr(lib, function) if isinstance(function, str) else function, VOID)
    called(f"Set{slot}Func", context, function, block, len(block), family=family)


def digest(algorithm):
    return "ZA_DigestFunc_Ref", {SHA1: 7, SHA256: 9}[algorithm].to_bytes(4, sys.byteorder)


def created(name, of="", values=(), functions=(), family="ZA_PKCS7_"):
    """A context: its attributes set, its functions installed. It lasts as long as the process."""
    context = VOID()
    called("Create" + name, ctypes.byref(context), family=family)
    for number, value in values:
        how, length = ("Int", ()) if isinstance(value, int) else ("Char", (len(value),))
        called(f"Set{of}Attribute{how}", context, number, value, *length, family=family)
    for slot, *function in functions:
        install(context, slot, *function, family=family)
    return context


# ---- Writing

def signer(identity, attributes=(), algorithm=SHA256, issuer=None):
    context = created("EncodeSignerInfo", "SignerInfo",
                      [*(issuer or [(2, identity.issuer)]), (11, identity.serial), (12, algorithm), (13, RSA)],
                      [("SignerInfoDigest", *digest(algorithm)),
                       ("SignerInfoEncSign", "ZA_PrivateKeyEncFunc_Ref", identity.private)])
    for kind, value in attributes:
        called("SetSignerAttribute", context, kind, len(kind), value, len(value))
    return context


def recipient(identity, issuer=None):
    return created("EncodeRecipientInfo", "RecipientInfo",
                   [*(issuer or [(24, identity.issuer)]), (33, identity.serial), (35, RSA)],
                   [("RecipientInfoKeyEnc", "ZA_PublicKeyEncryptFunc_Ref", identity.public)])


def encrypted_content(cipher=True):
    return created("EnocdeEncryptedContent", "EncryptedContent", [(18, AES128_CBC), (19, b"\x04\x10" + IV)],
                   [("EncryptContentEnc", aes_encrypt, KEY + IV)] if cipher else [])


def message(kind, values, parts=(), encoder="EncodePKCS7%s", put=()):
    context = created(kind + "EncodeCtx", kind, values)
    for setter, part in parts:
        called("Set" + setter, context, part)
    return written(encoder % kind, context, *put)


def signed(identity, content=b"", put=None, kind=DATA, named=(SHA256,), certificates=None, **of_signer):
    """`put` goes through the function that leaves the content out; no identity: certificates alone."""
    return message("SignedData", [(38, 1), *((39, algorithm) for algorithm in named), (40, kind), (41, content),
                                  *((42, der) for der in certificates or [identity.der])],
                   [("SignedData_SignerInfo", signer(identity, **of_signer))] if identity else [],
                   **({} if put is None else {"encoder": "EncodePKCS7%sPutData", "put": (put, len(put))}))


def enveloped(recipients, content, cipher=True):
    return message("EnvelopedData", [(51, 0), (52, content), (53, DATA), (54, KEY)],
                   [("EnvelopedData_EncryptedContent", encrypted_content(cipher)),
                    *(("EnvelopedData_RecipientInfo", one) for one in recipients)])


def data(content):
    context = created("DataEncodeCtx")
    called("SetDataContent", context, content, len(content))
    return written("EncodePKCS7Data", context)


# ---- Reading

class Signed:
    """A decoded message and its one signer; `refused` is the decoder's code."""

    def __init__(self, der):
        self.context = created("SignedDataDecodeCtx")
        self.refused = lib.ZA_PKCS7_DecodeSignedData(self.context, der, len(der))
        if not self.refused:
            assert read("GetSignedData_SignerInfoNum", self.context) == 1
            self.signer = read("GetSignedData_SignerInfo", self.context, 1, kind=VOID)
            self.attributes = read("GetSignerInfoAttributesNum", self.signer)

    def content(self, most):
        """Asking for the length is a failure with this getter."""
        out, length = (ctypes.c_uint8 * most)(), U32()
        called("GetSignedDataAttributeChar", self.context, 41, out, ctypes.byref(length), 1)
        return bytes(out[:length.value])

    def attribute(self, number):
        out, length = (ctypes.c_uint8 * 1000)(), U32()
        called("GetSignerAttribute", self.signer, None, ctypes.byref(U32()), out, ctypes.byref(length), number)
        return bytes(out[:length.value])

    def verdict(self, identity, detached=None):
        """200, 300, or the code of a failure."""
        if self.refused:
            return self.refused
        install(self.signer, "SignerInfoDigest", *digest(written("GetSignerInfoAttributeChar", self.signer, 12)))
        install(self.signer, "SignerInfoDecSign", "ZA_PublicKeyDecryptFunc_Ref", identity.public)
        result, name, content = U32(300), "ZA_PKCS7_VerifySignerSignature", ()
        if detached is not None and self.attributes:
            called("SetSignerInfoAttributeChar", self.signer, 16, detached, len(detached))
        elif detached is not None:
            name, content = name + "2", (detached, len(detached))
        return getattr(lib, name)(self.signer, *content, ctypes.byref(result)) or result.value


def decoded(der, context, decoder, *function):
    if function:
        install(context, *function)
    called("Decode" + decoder, context, der, len(der))
    return context


def decrypted(content_info, key):
    install(content_info, "EncryptContentDec", aes_decrypt,
            key + written("GetEncryptedContentAttributeChar", content_info, 19)[2:])
    return written("GetEncryptedContentInformation", content_info)


def opened_envelope(der, identity):
    context = decoded(der, created("EnvelopedDataDecodeCtx"), "PKCS7EnvelopedData")
    one = read("GetEnvelopedData_RecipientInfo", context, 1, kind=VOID)
    install(one, "RecipientInfoKeyDec", "ZA_PrivateKeyDecryptFunc_Ref", identity.private)
    key = (ctypes.c_uint8 * 512)()
    called("DecryptDesKey", one, key, ctypes.byref(U32()))
    return decrypted(read("GetEnvelopedData_EncryptedContent", context, kind=VOID), bytes(key[:16]))


def opened_encrypted(der, _):
    context = decoded(der, created("EncryptedDataDecodeCtx"), "PKCS7EncryptedData")
    return decrypted(read("GetEncrytpedData_EncryptedContent", context, kind=VOID), KEY)


def opened_data(der, _):
    return written("GetDataContent", decoded(der, created("DataEncodeCtx"), "PKCS7Data"))


def digest_verdict(der):
    context = decoded(der, created("DigestedDataDecodeCtx"), "PKCS7DigestedData", "DigestedDataHash", *digest(SHA256))
    return read("GetDigestedDataHashResult", context)
