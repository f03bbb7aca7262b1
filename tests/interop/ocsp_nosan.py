#!/usr/bin/env python3
"""OCSP requests and responses of the library before three other programs, and theirs before the library."""
import hashlib
import os
import pathlib
import re
import sys

from cryptography import x509
from cryptography.hazmat.primitives import hashes
from cryptography.hazmat.primitives.serialization import Encoding
from cryptography.x509 import ocsp as theirs

from support import ocsp
from support.lists import tlv
from support.messages import elements, inside
from support.ocsp import BASIC, SHA256_RSA, Decoded, encoded, entry, facts, signature_of
from support.peers import Identity, attempt, certificate, file, octets_of, run
from support.pkcs7 import SHA1, SHA256

THEN, NONCE = 1700000000, os.urandom(16)
GOOD, REVOKED, UNKNOWN = b"\x12\x34", b"\x12\x35", b"\x77"
differences = []
ca = Identity("CA")
certificate("One", "rsa:2048 -subj /CN=One -set_serial 0x1234 -CA CA.pem -CAkey CA.key")
file("index", b"V\t350101000000Z\t\t1234\tunknown\t/CN=One\n"
              b"R\t350101000000Z\t240101000000Z,keyCompromise\t1235\tunknown\t/CN=Two\n")


def differ(label, found, expected):
    if found != expected:
        differences.append(f"{label}: {found}, expected {expected}")


def named(serial, algorithm=SHA1, make=hashlib.sha1):
    return algorithm, make(ca.issuer).digest(), make(ocsp.key_of(ca)).digest(), serial


def readers(der, commands, texts, load):
    """What openssl and ocsptool, which show texts, and cryptography make of it; and all that the two say."""
    path, words, told = file("der", der), [], ""
    for command in commands:
        good, said = attempt(f"{command} {path}")
        told += (said := said.decode(errors="replace").lower())
        partly = re.search("bad time value|error: this_update|get_nonce: asn1 parser", said)
        words.append("refused" if not good else "wrong" if any(text not in said for text in texts) else
                     "partly" if partly else "ok")
    try:
        load(der)
        words.append("ok")
    except ValueError:
        words.append("refused")
    return " ".join(words), told


def request(*values, key=None, of_entry=()):
    return encoded("Request", [entry("Request", ca, GOOD, of_entry)], values, key)


def bare(kind, value):
    """A request with an extension whose value stands outside an OCTET STRING."""
    extension = tlv(0x30, tlv(6, BASIC[:-1] + kind) + value)
    return tlv(0x30, tlv(0x30, tlv(0x30, entry("Request", ca, GOOD)) + tlv(0xA2, tlv(0x30, extension))))


CERT_ID = inside(entry("Request", ca, GOOD))[0][2]
BARE_OID = tlv(0x30, tlv(6, SHA1) + b"".join(whole for _, _, whole in inside(CERT_ID)[1:]))
LOCATOR = bytes.fromhex("3018301606082b06010505073001860a") + b"http://a/b"
ACCEPTABLE, CUTOFF = bare(b"\4", tlv(0x30, tlv(6, BASIC))), bare(b"\6", tlv(0x18, b"231114221320Z"))
NONE = "refused refused refused"
# A request; what openssl, ocsptool and cryptography make of it; what one of the first two says.
REQUESTS = [
    ("plain", request(), "ok ok ok", "hash algorithm: sha1"),
    ("parameters NULL", request(of_entry=[(21, b"\5\0")]), "ok ok ok", "hash algorithm: sha1"),
    ("version 0", request((33, 0)), "ok ok refused", "version: 1 (0x0)"),
    ("nonce", request((1, NONCE)), "ok partly ok", "ocsp nonce: \n"),
    ("nonce nested", request((1, tlv(4, NONCE))), "ok ok ok", f"nonce: {NONCE.hex()}\n"),
    ("nonce critical", request((0, b"\1"), (1, tlv(4, NONCE))), "ok ok ok", "ocsp nonce: critical\n"),
    ("CRL reference", request((5, b"http://a/"), (3, 7)), "ok ok ok", "crlurl: http://a/\n            crlnum: 07"),
    ("CRL reference, time", request((4, THEN)), "partly ok ok", "crltime: bad time value"),
    ("acceptable responses", request((7, BASIC)), "ok ok ok", "basic ocsp response"),
    ("archive cutoff", request((9, THEN)), "partly ok ok", "ocsp archive cutoff: \n            bad time value"),
    ("CRL entry", request((11, b"\x0a\1\1")), "ok ok ok", "key compromise"),
    ("service locator", request((13, ca.issuer), (14, LOCATOR)), "ok ok ok", "ocsp - uri:http://a/b"),
    ("acceptable responses bare", ACCEPTABLE, NONE, "type=x509_extension"),
    ("archive cutoff bare", CUTOFF, NONE, "type=x509_extension"),
    ("requestor", request((34, ca.issuer)), NONE, "no matching choice"),
    ("signed", request((43, SHA256_RSA), (45, ca.der), key=ca.key), "refused refused ok", "type=x509_algor"),
    ("CertID alone", encoded("Request", [CERT_ID]), NONE, "field=reqcert"),
    ("hash algorithm a bare OID", request(of_entry=[(22, BARE_OID)]), NONE, "type=x509_algor"),
]


def ask_about_requests():
    _, name, key, serial = named(GOOD)
    for label, der, expected, shown in REQUESTS:
        found, told = readers(der, ("openssl ocsp -req_text -reqin", "ocsptool --request-info --infile"),
                              (name.hex(), key.hex(), serial.hex()),
                              lambda der: theirs.load_der_ocsp_request(der).extensions)
        differ(label, (found, shown in told), (expected, True))
        differ(f"{label}, answered", answered([GOOD], label.startswith("nonce")), expected[:7] != "refused")
    differ("read bare", Decoded("Request", ACCEPTABLE).octets(7), BASIC)
    differ("read bare", Decoded("Request", CUTOFF).number("AttributeInt", 9), THEN)


def basic_of(der):
    """The fields of a BasicOCSPResponse."""
    return [whole for _, _, whole in inside(inside(inside(der)[1][1])[1][1])]


def answered(serials, nonce=False, options=""):
    """Whether openssl answers. The library refuses what it says, but reads every SingleResponse in it."""
    if not attempt("openssl ocsp -index index -CA CA.pem -rsigner CA.pem -rkey CA.key -respout response -reqin der "
                   + options)[0]:
        return False
    good, said = attempt("openssl ocsp -CAfile CA.pem -issuer CA.pem -respin response -reqin der")
    der = octets_of("response")
    differ("answer", (Decoded("Response", der).refused, good, b"verify OK" in said, b"Nonce Verify" in said,
                      NONCE in der), (122, True, True, False, nonce))
    singles = inside(inside(basic_of(der)[0])[2][2])
    differ("answer", [facts("Response", single) for _, _, single in singles],
           [(*named(serial), [GOOD, REVOKED, UNKNOWN].index(serial) + 1) for serial in serials])
    return True


def read_responses():
    serials = [REVOKED, UNKNOWN, GOOD]
    file("der", encoded("Request", [entry("Request", ca, serial) for serial in serials]))
    for options in ("-nmin 5", "-resp_key_id", "-resp_no_certs"):
        differ(options, answered(serials, options=options), True)
    der = octets_of("response")
    for place in range(len(der)):
        for changed in (der[:place], der[:place] + bytes([der[place] ^ 1]) + der[place + 1:]):
            differ(f"changed at {place}", Decoded("Response", changed).refused > 0, True)


def read_requests():
    one, other, sha256 = named(GOOD), named(REVOKED), named(GOOD, SHA256, hashlib.sha256)
    for command, nonce, expected in (
            ("-cert One.pem", 18, [one]), ("-cert One.pem -no_nonce", 0, [one]), ("", 0, [one]),
            ("-sha256 -cert One.pem", 18, [sha256]),
            ("-cert One.pem -serial 0x1235 -sha256 -cert One.pem", 18, [one, other, sha256])):
        run(f"openssl ocsp -issuer CA.pem {command} -reqout der" if command else
            "ocsptool -q --load-issuer CA.pem --load-cert One.pem --outfile der")
        read = Decoded("Request", octets_of("der"))
        differ(command, ([*read.entries()], len(read.octets(1))), (expected, nonce))
    built = theirs.OCSPRequestBuilder().add_certificate(
        x509.load_pem_x509_certificate(octets_of("One.pem")), ca.certificate, hashes.SHA256())
    read = Decoded("Request", built.add_extension(x509.OCSPNonce(NONCE), False).build().public_bytes(Encoding.DER))
    differ("cryptography", ([*read.entries()], read.octets(1)), ([sha256], tlv(4, NONCE)))
    run("openssl ocsp -issuer CA.pem -cert One.pem -signer CA.pem -signkey CA.key -reqout der")
    der = octets_of("der")
    differ("signed", Decoded("Request", der).refused, 122)
    differ("its requestor", Decoded("Request", tlv(0x30, inside(der)[0][2])).octets(34), ca.issuer)


# What is left of what differs from RFC 6960; what openssl, ocsptool and cryptography make of it; what openssl says.
LEFT = [
    ("", "ok ok ok", "verify ok"),
    ("version", "ok ok refused", "verify ok"),
    ("times", "partly partly refused", "status times invalid"),
    ("responder", NONE, "type=ocsp_respid"),
    ("algorithm", NONE, "type=x509_algor"),
    ("signature", NONE, "field=signature, "),
    ("unknown", NONE, "null is wrong length"),
    ("version times responder algorithm signature unknown", NONE, "error parsing response"),
]


def response(*values, of_good=()):
    singles = [entry("Response", ca, serial, [(23, THEN), *more], status) for serial, more, status in (
        (GOOD, of_good, ("Good",)), (REVOKED, [(24, THEN + 86400)], ("Revoke", THEN - 5, 0, b"\1", 1)),
        (UNKNOWN, (), ("UnInfo", b"why", 3)))]
    return encoded("Response", singles,
                   [(46, 0), (48, b"\0"), (47, THEN), (60, SHA256_RSA), (63, BASIC), *values], ca.key)


def repaired(der, left):
    """A response as RFC 6960 has it, but for what is left."""
    def rewritten(identifier, content, whole):
        if identifier == 0x18 and "times" not in left:
            return tlv(0x18, b"20" + content)
        if identifier == 0x82 and "unknown" not in left:
            return b"\x82\0"
        return tlv(identifier, b"".join(rewritten(*field) for field in elements(content))) if identifier & 32 else whole

    data, algorithm, _, *certificates = basic_of(der)
    version, responder, *others = inside(data)
    who = responder[2] if "responder" in left else tlv(0xA1 + (responder[1][0] == 4), responder[1])
    data = tlv(0x30, version[2] * ("version" in left) + who + b"".join(rewritten(*field) for field in others))
    signature = signature_of(ca.key, data)
    fields = [data, algorithm if "algorithm" in left else tlv(0x30, algorithm + b"\5\0"),
              tlv(4, signature) if "signature" in left else tlv(3, b"\0" + signature), *certificates]
    return tlv(0x30, b"\x0a\1\0" + tlv(0xA0, tlv(0x30, tlv(6, BASIC) + tlv(4, tlv(0x30, b"".join(fields))))))


def ask_about_responses():
    for responder in ((49, ca.issuer), (59, named(GOOD)[2])):
        der = response(responder, (62, ca.der))
        for left, expected, shown in LEFT:
            # With bad times openssl stops in the middle.
            texts = () if "times" in left else ("status: good", "status: revoked", "status: unknown", "nov 14 22:13:15")
            made = repaired(der, left.split())
            found, told = readers(made, (
                "openssl ocsp -resp_text -CAfile CA.pem -issuer CA.pem -serial 0x1234 -respin",
                "ocsptool --response-info --infile"), texts,
                lambda der: [one.certificate_status for one in theirs.load_der_ocsp_response(der).responses])
            ours = left == LEFT[-1][0]
            differ(f"{responder[0]}, left: {left}", (found, shown in told, Decoded("Response", made).refused),
                   (expected, True, 0 if ours else 122))
            differ("nothing repaired", made == der, ours)


def ask_about_statuses():
    """Alone they are those of RFC 6960; openssl takes none for a success, and 0 cannot stand alone."""
    for status in theirs.OCSPResponseStatus:
        value, name = status.value, status.name.lower().replace("_", "")
        der = encoded("Response", values=[(48, bytes([value]))])
        found, told = readers(der, ("openssl ocsp -respin", "ocsptool --response-info --infile"), (),
                              theirs.load_der_ocsp_response)
        shown = [text in told for text in (f"responder error: {name} ({value})\n", f"response status: {name}\n")]
        differ(name, (found, shown), ("refused ok ok" if value else NONE, [value > 0] * 2))
        differ(name, Decoded("Response", der).octets(48), bytes([value]))


def look_at_tree():
    tree = pathlib.Path(os.environ["ZACERT_SOURCE_DIR"], "tests/data/ocsp/response_tree.txt")
    _, name, key, _ = named(GOOD)
    der = response((49, ca.issuer), (59, key), (62, b"\x30\3\2\1\1"), of_good=[(31, b"\5\0")])
    basic, lines = inside(inside(der)[1][1])[1][1], []
    for part in ("", f"-strparse {der.index(basic)}"):
        said = run(f"openssl asn1parse -inform DER -in {file('response', der)} {part}").decode()
        lines += [f"{depth} {what.strip()}" for depth, what in re.findall(r":d=(\d+) .*?[sm]: (.*)", said)]
    values = {"name_hash": name, "key_hash": key, "signature": signature_of(ca.key, basic_of(der)[0]), "basic": basic}
    differ("tree", "\n".join(re.sub(r" +(?=[:\[])", " ", line) for line in lines) + "\n", tree.read_text().format(
        **{what: "[HEX DUMP]:" + octets.hex().upper() for what, octets in values.items()}))


for ask in (ask_about_requests, read_responses, read_requests, ask_about_responses, ask_about_statuses, look_at_tree):
    ask()
print("\n".join(differences) or f"{len(REQUESTS)} requests, {2 * len(LEFT)} responses and the rest as expected")
sys.exit(1 if differences else 0)
