#!/usr/bin/env python3
"""Requests of the library before openssl, certtool, python's cryptography and Java, and theirs before the library."""
import base64
import ctypes
import os
import pathlib
import subprocess
import tempfile

from cryptography import x509

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])
SIGN = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.c_uint32, ctypes.c_void_p,
                        ctypes.POINTER(ctypes.c_uint32), ctypes.c_void_p)
TBS, ALGORITHM, SIGNATURE, COUNTRY, ORGANIZATION, COMMON_NAME = 2001, 2002, 2003, 2006, 2009, 2011
KEY_ALGORITHM, KEY, CURVE, STRING_TYPES = 2026, 2027, 3004, 3005
OWN, CHALLENGE, EXTENSIONS = map(bytes.fromhex, ("2A0304", "2A864886F70D010907", "2A864886F70D01090E"))
temporary = tempfile.TemporaryDirectory()


def output(*command, stdin=b"", also_failing=False):
    errors = subprocess.STDOUT if also_failing else subprocess.DEVNULL
    return subprocess.run(command, input=stdin, check=not also_failing, stdout=subprocess.PIPE, stderr=errors,
                          cwd=temporary.name).stdout


@SIGN
def signed_by_openssl(octets, size, out, out_len, key):
    """The context of this function that signs is the name of a file with the key."""
    signature = output("openssl", "dgst", "-sha256", "-sign", ctypes.string_at(key).decode(),
                       stdin=ctypes.string_at(octets, size)) if out else bytes(512)
    if out:
        ctypes.memmove(out, signature, len(signature))
    out_len[0] = len(signature)
    return 0


class Request:
    def __init__(self, der=None):
        self.context = ctypes.c_void_p()
        assert lib.ZACert_CreateCsrEncodeCtx(ctypes.byref(self.context)) == 0
        if der:
            self.call("DecodeCsr", der, len(der))

    def __del__(self):
        self.call("DestroyCsrEncodeCtx")

    def call(self, name, *arguments):
        result = getattr(lib, "ZACert_" + name)(self.context, *arguments)
        assert result == 0, f"{name}: {result}"

    def two_calls(self, name, *arguments):
        length = ctypes.c_uint32()
        self.call(name, *arguments, None, ctypes.byref(length))
        out = (ctypes.c_uint8 * max(length.value, 1))()
        self.call(name, *arguments, out, ctypes.byref(length))
        return bytes(out[:length.value])

    def get(self, field):
        return self.two_calls("GetCsrAttributeChar", field)


def takes(name, der):
    """Whether a program takes a request and, where it looks at it, finds its signature good."""
    if name == "python":
        try:
            request = x509.load_der_x509_csr(der)
            return request.is_signature_valid and request.attributes is not None
        except ValueError:
            return False
    pem = b"-----BEGIN CERTIFICATE REQUEST-----\n%s-----END CERTIFICATE REQUEST-----\n" % base64.encodebytes(der)
    command, octets, good = {
        "openssl": ("openssl req -inform der -noout -verify", der, b"verify OK"),
        "certtool": ("certtool --crq-info --inder", der, b"Self signature: verified"),
        "java": ("keytool -printcertreq", pem, b"PKCS #10")}[name]
    return good in output(*command.split(), stdin=octets, also_failing=True)


def refusing(der):
    return {name for name in ("openssl", "certtool", "python", "java") if not takes(name, der)}


# What a request holds, and who refuses it.
CASES = (
    ("no attribute", [], set()),
    ("ascending attributes", [(OWN, b"a"), (OWN, b"b")], set()),
    # Attributes are written in call order; these two check that it is the order of DER.
    ("descending attributes", [(OWN, b"b"), (OWN, b"a")], {"certtool", "python"}),
    # Values are OCTET STRINGs, and Java knows these attributes by types of their own.
    ("challengePassword", [(CHALLENGE, b"secret")], {"java"}),
    ("extensionRequest", [(EXTENSIONS, bytes.fromhex("3000"))], {"java"}))


def write_requests(source, key):
    for title, attributes, refused in CASES:
        request = Request()
        values = {field: source.get(field) for field in (ALGORITHM, COUNTRY, ORGANIZATION, COMMON_NAME,
                                                         KEY_ALGORITHM, KEY, CURVE)}
        for field, value in (values | {STRING_TYPES: bytes((0, 12, 12))}).items():
            if value:
                request.call("SetCsrAttributeChar", field, value, len(value))
        for oid, value in attributes:
            request.call("SetCsrAttributePrivate", oid, len(oid), value, len(value))
        request.call("SetCsrSignFunc", signed_by_openssl, key.encode() + b"\0", len(key) + 1)
        der = request.two_calls("EncodeCsr")
        assert refusing(der) == refused, f"{key} {title}: {refusing(der)} refuse it"
        assert attributes or request.get(TBS) == source.get(TBS), f"{key}: not openssl's own octets"
        assert Request(der).get(SIGNATURE) == request.get(SIGNATURE)


def read_request(der, key):
    assert not refusing(der), key
    damaged = der[:-1] + bytes((der[-1] ^ 1,))
    assert refusing(damaged) >= {"openssl", "certtool", "python"}, "nobody looks at signatures"
    request, theirs = Request(der), x509.load_der_x509_csr(der)
    assert (request.get(TBS), request.get(SIGNATURE)) == (theirs.tbs_certrequest_bytes, theirs.signature)
    assert request.get(COMMON_NAME) == b"request.example"
    return request


pathlib.Path(temporary.name, "names").write_text("country = DE\norganization = Example\ncn = request.example\n")
for kind, option in (("rsa", "rsa_keygen_bits:2048"), ("ec", "ec_paramgen_curve:P-256")):
    output("openssl", "genpkey", "-algorithm", kind, "-pkeyopt", option, "-out", kind)
    read_request(output("certtool", "--generate-request", "--load-privkey", kind, "--template", "names", "--outder",
                        "--hash", "SHA256"), kind)
    write_requests(read_request(output("openssl", "req", "-new", "-key", kind, "-sha256", "-outform", "DER", "-subj",
                                       "/C=DE/O=Example/CN=request.example"), kind), kind)
