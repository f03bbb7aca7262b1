#!/usr/bin/env python3
"""The example programs: what they write other programs verify, decrypt, open and answer."""
import os
import pathlib
import re
import sys

from support import peers
from support.messages import inside
from support.peers import FOLDER, Identity, attempt, file, introduced, octets_of, run

if "ZACERT_EXAMPLES" not in os.environ:
    print("built without the examples")
    sys.exit(77)
EXAMPLES = os.environ["ZACERT_EXAMPLES"]
SOURCES = pathlib.Path(os.environ["ZACERT_SOURCE_DIR"], "examples").glob("*.c")
PASSWORD, NAME = "abc123", "\u8bc1\u4e66"
TEXT, KEY, IV = os.urandom(5000), os.urandom(16), os.urandom(16)


def expect_verified(*message):
    assert peers.refusing(*message) == set() and peers.java_verifies([message]) == [True], message


def sign_with_token():
    file("conf", f"directories.tokendir = {FOLDER}\n".encode())
    file("pin", b"1234\n")
    os.environ["SOFTHSM2_CONF"] = str(FOLDER / "conf")
    run("softhsm2-util --init-token --free --label example --pin 1234 --so-pin 5678")
    run("openssl pkcs8 -topk8 -nocrypt -in One.key -out One.p8")
    run("softhsm2-util --import One.p8 --token example --pin 1234 --label key --id 01")
    command = (f"{EXAMPLES}/sign_with_token pkcs11:token=example;object=%s?module-path={os.environ['ZACERT_SOFTHSM']}"
               f"&pin-source=file:{FOLDER}/pin One.der text %s")
    run(command % ("key", "token.p7"))
    expect_verified("token.p7", None)
    good, said = attempt(command % ("other", "none.p7"))
    assert not good and said.startswith(b"113 from zacert_pkcs11_open") and not (FOLDER / "none.p7").exists(), said


def sign_detached():
    run("openssl rsa -in One.key -traditional -outform DER -out key.der")
    run(f"{EXAMPLES}/sign_detached key.der One.der text detached.p7")
    message = octets_of("detached.p7")
    for attribute in (3, 4, 5):
        assert message.count(bytes.fromhex("06092a864886f70d0109") + bytes([attribute])) == 1, attribute
    assert TEXT not in message
    expect_verified("detached.p7", "text")


def envelopes(people):
    run(f"{EXAMPLES}/envelope_two One.der Two.der text two.p7")
    file("parameter", b"\x04\x10" + IV)
    file("ciphertext", run(f"openssl enc -aes-128-cbc -K {KEY.hex()} -iv {IV.hex()}", TEXT))
    for name in people:
        file(f"{name}.enc", run(f"openssl pkeyutl -encrypt -certin -inkey {name}.pem", KEY))
    run(f"{EXAMPLES}/envelope_ready parameter ciphertext ready.p7 One.der One.enc Two.der Two.enc")
    for message in ("two.p7", "ready.p7"):
        for name in people:
            plain = run(f"openssl cms -decrypt -inform DER -binary -in {message} -recip {name}.pem -inkey {name}.key")
            assert plain == TEXT, f"{message} for {name}"


def pfx():
    name = NAME.encode("gb18030")
    assert run(f"{EXAMPLES}/pfx key.der One.der {PASSWORD} {os.fsdecode(name)} named.p12") == name + b"\n"
    said = run(f"openssl pkcs12 -in named.p12 -legacy -nodes -passin pass:{PASSWORD}")
    # It writes the low octets alone.
    assert b"friendlyName: \xc1\x66\n" in said and b"PRIVATE KEY" in said, said
    said = run(f"certtool --p12-info --inder --infile named.p12 --password {PASSWORD}")
    assert f"Friendly name: {NAME}\n".encode() in said and b"PRIVATE KEY" in said, said


def wrappers(people):
    for name in people:
        run(f"openssl pkcs12 -export -legacy -in {name}.pem -inkey {name}.key -out {name}.p12 "
            f"-passout pass:{PASSWORD}")
    run(f"{EXAMPLES}/wrappers send Two.der One.p12 {PASSWORD} text package")
    signature, key, content = (bytes.fromhex(line.decode()) for line in octets_of("package").split(b"\n")[:3])
    file("signature", signature)
    file("One.pub", run("openssl x509 -in One.pem -noout -pubkey"))
    run("openssl dgst -sha1 -verify One.pub -signature signature text")
    digits = run("openssl pkeyutl -decrypt -inkey Two.key", key).decode()
    assert run(f"openssl enc -d -aes-128-ecb -K {digits}", content) == TEXT
    run(f"{EXAMPLES}/wrappers receive One.der Two.p12 {PASSWORD} package received")
    assert octets_of("received") == TEXT
    good, said = attempt(f"{EXAMPLES}/wrappers receive Two.der Two.p12 {PASSWORD} package none")
    assert not good and said.startswith(b"4294967295 from Pfx_VerifyData_KOVA") and not (FOLDER / "none").exists(), said


def ocsp():
    assert run(f"{EXAMPLES}/ocsp key.der One.der Two.der request response") == b"good\n"
    said = run("openssl ocsp -reqin request -req_text")
    hashes = re.findall(rb"hash: (\w+)", run("openssl x509 -in One.pem -noout -ocspid"))
    for text in (*hashes, two.serial.hex().upper().encode(), b"OCSP Nonce"):
        assert text in said, (text, said)
    said = attempt("openssl ocsp -respin response")[1]
    assert said.startswith(b"Error parsing response"), said
    (_, _, data), _, (_, signature, _) = inside(inside(inside(octets_of("response"))[1][1])[1][1])
    file("signature", signature)
    run("openssl dgst -sha256 -verify One.pub -signature signature", data)



one, two = Identity("One"), Identity("Two")
file("text", TEXT)
with introduced(one):
    sign_with_token()
    sign_detached()
envelopes((one.name, two.name))
pfx()
wrappers((one.name, two.name))
ocsp()
for source in SOURCES:
    assert b"usage: " + source.stem.encode() in attempt(f"{EXAMPLES}/{source.stem}")[1], source
