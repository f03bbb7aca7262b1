#!/usr/bin/env python3
"""PKCS#7 messages of the library before seven other programs: who takes them, and who does not."""
import os
import sys

from support import peers, pkcs7
from support.peers import ALL, FOLDER, Identity, attempt, file, introduced, octets_of, run

TEXT = os.urandom(3000)
CT = (pkcs7.CONTENT_TYPE, b"\x06\x09" + pkcs7.DATA)
MD = (pkcs7.MESSAGE_DIGEST, b"\x04\x00")  # its value is replaced, in its place
SHA1 = {"algorithm": pkcs7.SHA1, "named": [pkcs7.SHA1]}
OTHER_TYPE, VALUE = pkcs7.DATA[:-1] + b"\x05", TEXT[:100]
OTHER = {"kind": OTHER_TYPE, "content": b"\x04\x64" + VALUE, "attributes": [(CT[0], b"\x06\x09" + OTHER_TYPE)]}
EXCHANGED = {"content": TEXT, "put": TEXT[::-1]}
OPENSSL = {"cms", "smime"}

signer, mail = Identity("Signer"), Identity("Mail", "/emailAddress=a@example.org")
COMPONENTS = ((3, b"DE"), (6, b"Example"), (8, b"Mail"), (9, b"a@example.org"))
MAIL = {"identity": mail, "issuer": COMPONENTS}
# What is signed and how; who refuses it, of those asked. Each once with its content and once without.
SIGNED = [
    ("no attributes", {}, set(), ALL),
    ("no attributes, SHA-1", SHA1, set(), OPENSSL),
    ("messageDigest alone", {"attributes": [MD]}, {"cms", "NSS", "java"}, ALL),
    ("contentType", {"attributes": [CT]}, set(), ALL),
    ("contentType, SHA-1", {"attributes": [CT]} | SHA1, set(), OPENSSL),
    ("messageDigest before contentType", {"attributes": [MD, CT]}, {"certtool"}, ALL),
    ("issuer with an e-mail address", MAIL, {"NSS", "java"}, ALL),
    ("65535 octets", {"content": os.urandom(65535)}, set(), ALL),
    ("no digest algorithm named", {"named": ()}, OPENSSL, OPENSSL | {"certtool", "java"}),
]
SINGLE = [
    ("content exchanged", EXCHANGED, ALL, ALL),
    ("content exchanged, contentType", EXCHANGED | {"attributes": [CT]}, ALL, ALL),
    ("attributes without messageDigest", {"attributes": [CT], "beside": TEXT}, ALL, ALL),
    ("another type, the element digested", OTHER, OPENSSL | {"certtool", "java"}, OPENSSL | {"certtool", "java"}),
    ("another type, its value digested", OTHER | {"put": VALUE}, set(), {"cms", "certtool"}),
]
differences = []


def differ(label, found, expected):
    if found != expected:
        differences.append(f"{label}: {found}, expected {expected}")


def ask_verifiers():
    rows = list(SINGLE)
    for label, options, *who in SIGNED:
        content = options.get("content", TEXT)
        rows.append((label + ", attached", options | {"content": content}, *who))
        rows.append((label + ", detached", options | {"content": b"", "put": content, "beside": content}, *who))
    messages = []
    for number, (_, options, _, _) in enumerate(rows):
        given = {"identity": signer} | options
        beside = given.pop("beside", None)
        messages.append((file(f"{number}.p7", pkcs7.signed(**given)), beside and file(f"{number}.content", beside)))
    for (label, _, refused, asked), message, java in zip(rows, messages, peers.java_verifies(messages)):
        answers = peers.refusing(*message, asked) | ({"java"} if "java" in asked and not java else set())
        differ(label, answers, refused)
        if label.startswith(("no attributes", "messageDigest before", "65535")):
            differ(f"{label}: cryptography", peers.certificates_by_cryptography(message[0]), [signer.der])


def ask_for_certificates():
    certificates = [signer.der, mail.der]
    path = file("certificates.p7b", pkcs7.signed(None, named=(), certificates=certificates))
    for command, form in (("openssl cms -cmsout -print -inform DER -in", b"CN=Mail"),
                          ("openssl pkcs7 -inform DER -print_certs -in", b"CN=Mail"),
                          ("certtool --p7-info --inder --infile", b"Number of certificates: 2"),
                          ("keytool -printcert -file", b"CN=Mail")):
        good, said = attempt(f"{command} {path}")
        differ(f"certificates alone: {command}", (good, form in said.replace(b" = ", b"=")), (True, True))
    differ("certificates alone: cryptography", peers.certificates_by_cryptography(path), certificates)


def decrypted_by(tool, message, identity):
    if tool == "cryptography":
        try:
            der = octets_of(message)
            return peers.pkcs7.pkcs7_decrypt_der(der, identity.certificate, identity.key, [])
        except ValueError:
            return None
    (FOLDER / "out").unlink(missing_ok=True)
    commands = {"NSS": f"cmsutil -D -d sql:nss -o out -i {message}", "gpgsm": f"gpgsm --output out --decrypt {message}"}
    good, _ = attempt(commands.get(tool, f"openssl {tool} -decrypt -inform DER -binary -out out -in {message} "
                                         f"-inkey {identity.name}.key -recip {identity.name}.pem"), b"x\n")
    return octets_of("out") if good else None


def ask_decrypters():
    # Older releases of cryptography do not decrypt.
    tools = OPENSSL | {"NSS", "gpgsm"} | ({"cryptography"} if hasattr(peers.pkcs7, "pkcs7_decrypt_der") else set())
    both, issuer = map(pkcs7.recipient, (signer, mail)), [(number + 22, text) for number, text in COMPONENTS]
    for label, der, people, refused in (
            ("an envelope", pkcs7.enveloped(both, TEXT), [signer, mail], set()),
            ("its issuer with an e-mail address", pkcs7.enveloped([pkcs7.recipient(mail, issuer)], TEXT), [mail],
             {"NSS", "cryptography"} & tools),
            ("no ciphertext", pkcs7.enveloped([pkcs7.recipient(mail)], TEXT, cipher=False), [mail], tools)):
        message = file("message.p7", der)
        for person in people:
            differ(label, {tool for tool in tools if decrypted_by(tool, message, person) != TEXT}, refused)


with introduced(signer, mail):
    for ask in (ask_verifiers, ask_for_certificates, ask_decrypters):
        ask()
file("data.p7", pkcs7.data(TEXT))
differ("content alone", run("openssl cms -data_out -inform DER -binary -in data.p7"), TEXT)
print("\n".join(differences) or f"{len(SIGNED) * 2 + len(SINGLE)} signed messages and the rest as expected")
sys.exit(1 if differences else 0)
