#!/usr/bin/env python3
"""PKCS#7 messages of five other programs before the library: what it reads, verifies, decrypts and refuses."""
import os
import zipfile

from support import pkcs7
from support.peers import FOLDER, Identity, file, introduced, octets_of, run

LARGE = os.urandom(200_000)
signer = Identity("Signer")
elliptic = Identity("Curve", option="ec -pkeyopt ec_paramgen_curve:P-256")
OUT = f"-in {file('large', LARGE)} -binary -outform DER -out message"
CMS = f"{OUT} -signer Signer.pem -inkey Signer.key"
CERTTOOL = "--load-certificate Signer.pem --load-privkey Signer.key --infile large --outder --outfile message"
# A command; whether the content stands beside the message; whether the message is DER.
SIGNED = [
    *((f"openssl {tool} -sign {form} {attributes} {stream} {CMS}", not form, not stream)
      for tool in ("cms", "smime") for attributes in ("", "-noattr")
      for form, stream in (("-nodetach", ""), ("-nodetach", "-stream"), ("", ""))),
    (f"openssl cms -sign -nodetach {CMS} -md sha1", False, True),
    (f"certtool --p7-sign {CERTTOOL}", False, True),
    (f"certtool --p7-sign --p7-time {CERTTOOL}", False, True),
    (f"certtool --p7-detached-sign {CERTTOOL}", True, True),
    *((f"cmsutil -S -d sql:nss -N Signer -i large -o message {form}", "-T" in form, False)
      for form in ("", "-G", "-G -T")),
    *((f"gpgsm --output message {form} large", "detach" in form, False) for form in ("--sign", "--detach-sign")),
]


def made(command):
    (FOLDER / "message").unlink(missing_ok=True)
    run(command, b"x\n")
    return octets_of("message")


def expect(found, expected, what):
    assert found in expected, f"{what}: {found}, expected {expected}"


def read_signed(label, der, content, detached, is_der):
    message, beside = pkcs7.Signed(der), content if detached else None
    # A signer that came as DER goes out as it came.
    assert not is_der or pkcs7.written("EncodeSignerInfo", message.signer) in der, label
    expect(message.verdict(signer, beside), {200}, label)
    assert message.content(len(content)) == (b"" if detached else content), label
    parts = [pkcs7.written("GetSignerInfoAttributeChar", message.signer, 14), *([] if detached else [content[:1000]]),
             *(message.attribute(number + 1) for number in range(message.attributes))]
    for part in parts:
        at = der.rindex(part) + len(part) // 2  # the type of the content stands before the signer too
        changed = der[:at] + bytes([der[at] ^ 1]) + der[at + 1:]
        assert pkcs7.Signed(changed).verdict(signer, beside) != 200, f"{label}: verified although changed at {at}"
    exchanged = content[::-1]
    if detached:
        expect(pkcs7.Signed(der).verdict(signer, exchanged), {300}, f"{label}, content exchanged")
    elif is_der:
        expect(pkcs7.Signed(der.replace(content, exchanged)).verdict(signer), {300}, f"{label}, content exchanged")


def read_jar():
    """Java's own signatures are those of archives."""
    with zipfile.ZipFile(FOLDER / "jar", "w") as archive:
        archive.writestr("file", "a few octets")
    run("jarsigner -keystore Signer.p12 -storepass x jar Signer")
    with zipfile.ZipFile(FOLDER / "jar") as archive:
        read_signed("jarsigner", archive.read("META-INF/SIGNER.RSA"), archive.read("META-INF/SIGNER.SF"), True, True)


def read_the_rest():
    key = pkcs7.KEY.hex()
    for stream in ("", "-stream"):
        for command, opened in ((f"cms -encrypt -aes-128-cbc {OUT} {stream} Signer.pem", pkcs7.opened_envelope),
                                (f"smime -encrypt -aes-128-cbc {OUT} {stream} Signer.pem", pkcs7.opened_envelope),
                                (f"cms -EncryptedData_encrypt -aes-128-cbc -secretkey {key} {OUT} {stream}",
                                 pkcs7.opened_encrypted), (f"cms -data_create {OUT} {stream}", pkcs7.opened_data)):
            assert opened(made(f"openssl {command}"), signer) == LARGE, command
        # The library digests the whole element, the others its value.
        expect(pkcs7.digest_verdict(made(f"openssl cms -digest_create -md sha256 {OUT} {stream}")), {300}, "digested")
        run("openssl cms -digest_verify -inform DER -in message -out out")
    assert pkcs7.opened_envelope(made("cmsutil -E -d sql:nss -i large -o message -r Signer"), signer) == LARGE


def refuse():
    """Signers by key identifier, other paddings and keys; a recipient with whom a key is agreed."""
    for name, option, expected in (("Signer", "-keyid", {122}), ("Signer", "-keyopt rsa_padding_mode:pss", {126, 300}),
                                   ("Curve", "", {126, 300})):
        der = made(f"openssl cms -sign -nodetach {OUT} -signer {name}.pem -inkey {name}.key {option}")
        expect(pkcs7.Signed(der).verdict(signer), expected, f"{name} {option}")
    der = made(f"openssl cms -encrypt -aes-128-cbc {OUT} Curve.pem Signer.pem")
    context = pkcs7.created("EnvelopedDataDecodeCtx")
    expect(pkcs7.lib.ZA_PKCS7_DecodePKCS7EnvelopedData(context, der, len(der)), {122}, "key agreement")


with introduced(signer):
    for line, beside_it, plain in SIGNED:
        read_signed(line, made(line), LARGE, beside_it, plain)
    read_jar()
    read_the_rest()
    refuse()
