#!/usr/bin/env python3
"""The example programs: what they write other programs verify and decrypt."""
import os
import pathlib
import sys

from support import peers
from support.peers import FOLDER, Identity, attempt, file, introduced, octets_of, run

if "ZACERT_EXAMPLES" not in os.environ:
    print("built without the examples")
    sys.exit(77)
EXAMPLES = os.environ["ZACERT_EXAMPLES"]
SOURCES = pathlib.Path(os.environ["ZACERT_SOURCE_DIR"], "examples").glob("*.c")
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


one, two = Identity("One"), Identity("Two")
file("text", TEXT)
with introduced(one):
    sign_with_token()
    sign_detached()
envelopes((one.name, two.name))
for source in SOURCES:
    assert b"usage: " + source.stem.encode() in attempt(f"{EXAMPLES}/{source.stem}")[1], source
