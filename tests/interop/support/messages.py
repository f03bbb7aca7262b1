"""What the tests of `p7` share: keys, messages made by openssl or by hand, and the tool."""

import hashlib
import json
import subprocess
import unittest

from support.lists import tlv
from support.oracle import TOOL
from support.peers import FOLDER, certificate, file, octets_of, run

CONTENT = b"what is signed\n" * 3
EC = "ec -pkeyopt ec_paramgen_curve:P-256"
PEOPLE = {
    "user": "rsa:3072 -extensions user -set_serial 138",
    "second": "rsa:2048 -extensions user -set_serial 3",
    "third": "rsa:2048 -extensions user -set_serial 4",
    "silent": "rsa:2048 -extensions silent -set_serial 5",
    "ec": f"{EC} -extensions user -set_serial 6",
    "sm2": "ec -pkeyopt ec_paramgen_curve:SM2 -extensions user -set_serial 7",
}
DATA, SIGNED, ENVELOPED, BOTH = (bytes.fromhex("06092a864886f70d01070" + n) for n in "1234")
CONTENT_TYPE, DIGEST = (bytes.fromhex("06092a864886f70d01090" + n) for n in "34")
SHA256 = bytes.fromhex("300d06096086480165030402010500")
RSA = bytes.fromhex("300d06092a864886f70d0101010500")


def elements(octets):
    """What stands one behind the other: identifier, content and whole element of each."""
    found = []
    while octets:
        first, head = octets[1], 2
        size = first
        if first >= 128:
            head += first & 127
            size = int.from_bytes(octets[2:head], "big")
        found.append((octets[0], octets[head:head + size], octets[:head + size]))
        octets = octets[head + size:]
    return found


def inside(octets):
    return elements(elements(octets)[0][1])


def message(kind, *fields):
    return tlv(0x30, kind + tlv(0xa0, tlv(0x30, b"".join(fields))))


def fields_of(der):
    """Those of the message inside its ContentInfo, whole."""
    return [whole for _, _, whole in inside(inside(der)[1][1])]


def attribute(kind, *values):
    return tlv(0x30, kind + tlv(0x31, b"".join(values)))


def by_openssl(command, octets=b""):
    return run(f"openssl {command}", octets)


def signed(options="", signer="user", form="DER", command="cms", content=CONTENT):
    return by_openssl(f"{command} -sign -binary -outform {form} -signer {signer}.pem "
                      f"-inkey {signer}.key {options}", content)


def der_of(name):
    return by_openssl(f"x509 -in {name}.pem -outform DER")


def by_hand(attributes, content=CONTENT, kind=DATA, certificates=("user",), digest=SHA256,
            algorithm=RSA, signature=None):
    """A message whose signer has these attributes, None for none, with a good signature."""
    octets = CONTENT if attributes is None else tlv(0x31, b"".join(attributes))
    signature = signature or by_openssl("dgst -sha256 -sign user.key", octets)
    parts = [der_of(name) for name in certificates]
    names = inside(inside(parts[-1])[0][2])
    signer = tlv(0x30, b"\2\1\1" + tlv(0x30, names[3][2] + names[1][2]) + digest +
                 (b"" if attributes is None else tlv(0xa0, b"".join(attributes))) + algorithm +
                 tlv(4, signature))
    return message(SIGNED, b"\2\1\1", tlv(0x31, digest),
                   tlv(0x30, kind + tlv(0xa0, tlv(4, content))), tlv(0xa0, b"".join(parts)),
                   tlv(0x31, signer))


def tool(command, octets=b""):
    """Exit status and both outputs."""
    result = subprocess.run([TOOL, *command.split()], input=octets, cwd=FOLDER, capture_output=True,
                            check=False)
    return result.returncode, result.stdout.decode(), result.stderr.decode()


def good(command, octets=b""):
    status, output, problems = tool(command, octets)
    assert status == 0, (command, output, problems)
    return output


def shown(octets):
    """The one object of the tool's JSON."""
    result, = json.loads(good("p7 show --format json -", octets))
    return result


class MessageTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        file("content", CONTENT)
        certificate("root", "rsa:2048 -subj /CN=root -set_serial 1")
        file("ca.pem", octets_of("root.pem"))
        for name, options in PEOPLE.items():
            certificate(name, f"{options} -subj /CN={name} -CA root.pem -CAkey root.key")

    def bad(self, expected, command, octets=b"", status=1, out="--out none"):
        """Refused in one line that says so, and without a file."""
        found, output, problems = tool(f"{command} {out}", octets)
        self.assertEqual(found, status, (command, output, problems))
        self.assertIn(expected, output + problems)
        if status == 1:
            self.assertEqual((output, problems.count("\n")), ("", 1), problems)
        self.assertEqual(list(FOLDER.glob("none*")), [])


GOOD_TYPE = attribute(CONTENT_TYPE, DATA)
GOOD_DIGEST = attribute(DIGEST, tlv(4, hashlib.sha256(CONTENT).digest()))
