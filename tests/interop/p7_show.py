"""The commands `show` and `p7 show` on PKCS#7 messages, most of them fresh from openssl."""

import hashlib
import itertools
import re
import unittest

from support.lists import crl_of, tlv
from support.messages import (BOTH, CONTENT, SIGNED, MessageTest, by_openssl, der_of, fields_of,
                              good, message, shown, signed, tool)
from support.oracle import show
from support.peers import file, octets_of, run

SECRET = "00112233445566778899aabbccddeeff"
ROOT = [[{"type": "CN", "oid": "2.5.4.3", "value": "root", "string_type": "PrintableString"}]]
LISTS = tlv(0xa1, crl_of(b"\x17\x0d250101000000Z", b"") +
            crl_of(b"\x17\x0d250101000000Z", tlv(0x30, b"\2\1\7\x17\x0d250101000000Z")))


def name(value):
    return value["name"]


def encrypted(options="", to="user.pem second.pem", cipher="aes-128-cbc"):
    return by_openssl(f"cms -encrypt -binary -{cipher} -outform DER {options} {to}", CONTENT)


class Shown(MessageTest):
    def assert_signer(self, signer, digest="SHA-256"):
        self.assertEqual((signer["issuer"], signer["serial"], name(signer["digest_algorithm"]),
                          name(signer["signature_algorithm"]), len(signer["signature"])),
                         (ROOT, "8a", digest, "RSA", 768))

    def test_signed(self):
        for form, options in itertools.product(
                ("DER", "PEM"), ("", "-stream", "-md sha512", "-noattr")):
            with self.subTest(f"{form} {options}"):
                octets = signed("-nodetach -certfile root.pem " + options, form=form)
                found = shown(octets)
                self.assertEqual(show(["-"], octets), [found])
                digest = "SHA-512" if "512" in options else "SHA-256"
                self.assertEqual(
                    (name(found["type"]), found["version"], name(found["content"]["type"]),
                     found["content"]["size"], list(map(name, found["digest_algorithms"]))),
                    ("signedData", 1, "data", len(CONTENT), [digest]))
                self.assertEqual({c["serial"] for c in found["certificates"]}, {"01", "8a"})
                signer, = found["signers"]
                self.assert_signer(signer, digest)
                known = {name(a): a for a in signer["attributes"]}
                if "noattr" in options:
                    self.assertEqual(known, {})
                    continue
                self.assertEqual(name(known["contentType"]["content_type"]), "data")
                self.assertEqual(known["messageDigest"]["digest"], hashlib.new(
                    digest.replace("-", "").lower(), CONTENT).hexdigest())
                self.assertRegex(known["signingTime"]["time"], r"^20\d\d-.*Z$")
                self.assertEqual(known["smimeCapabilities"]["hex"][:2], "30")

    def test_detached(self):
        smime = signed("-nocerts", form="PEM", command="smime")
        self.assertIn(b"BEGIN PKCS7", smime)
        found = shown(smime)
        self.assertEqual((found["content"].get("size"), found["certificates"]), (None, []))
        self.assertEqual(shown(signed("-nodetach", content=b""))["content"]["size"], 0)

    def test_the_other_types(self):
        for options in ("", "-stream"):
            found = shown(encrypted(options))
            self.assertEqual((name(found["type"]), name(found["encryption"]),
                              found["content"]["size"]), ("envelopedData", "AES-128-CBC", 48))
            self.assertEqual([(r["serial"], name(r["key_algorithm"]), r["encrypted_key_size"])
                              for r in found["recipients"]],
                             [("03", "RSA", 256), ("8a", "RSA", 384)])
            self.assertEqual(len(found["encryption"]["initialization_vector"]), 32)
        sha256 = hashlib.sha256(CONTENT).hexdigest()
        for command, kind, size, digest in (
                ("data_create", "data", 45, None),
                ("digest_create -md sha256", "digestedData", 45, sha256),
                (f"EncryptedData_encrypt -aes-128-cbc -secretkey {SECRET}", "encryptedData", 48,
                 None)):
            found = shown(by_openssl(f"cms -{command} -binary -outform DER", CONTENT))
            self.assertEqual((name(found["type"]), found["content"]["size"], found.get("digest"),
                              "version" in found), (kind, size, digest, kind != "data"))
        self.assertEqual(name(found["encryption"]), "AES-128-CBC")

    def test_signed_and_enveloped(self):
        """Nobody makes these any more: the parts are taken from two messages."""
        version, digests, info, certificates, signers = fields_of(signed())
        _, recipients, content = fields_of(encrypted())
        found = shown(message(BOTH, version, recipients, digests, content, certificates, LISTS,
                              signers))
        self.assertEqual((name(found["type"]), [r["serial"] for r in found["recipients"]],
                          [c["num_revoked"] for c in found["crls"]],
                          [c["serial"] for c in found["certificates"]]),
                         ("signedAndEnvelopedData", ["03", "8a"], [0, 1], ["8a"]))
        self.assert_signer(found["signers"][0])
        found = shown(message(SIGNED, version, digests, info, certificates, LISTS, signers))
        self.assertEqual([c["num_revoked"] for c in found["crls"]], [0, 1])

    def test_text_and_table(self):
        octets = file("text.p7", signed("-nodetach"))
        text = good(f"show {octets}")
        self.assertNotIn(CONTENT.split(b"\n")[0].decode(), text)
        for line in ("PKCS#7 message 1 of .*text.p7", "    Type: +signedData",
                     "    Content: +data, 45 octets", "        CN=user, serial 8a of CN=root",
                     "        serial 8a of CN=root", "            Signature RSA, 384 octets",
                     "                messageDigest (?:[0-9a-f]{2}:){31}[0-9a-f]{2}",
                     "                signingTime 20.* UTC"):
            self.assertRegex(text, f"(?m)^{line}$")
        table = good(f"show --format table {octets} root.pem")
        self.assertRegex(table, r"(?m)^\(signedData, signers: 1\) +root +8a +- +- +- ")
        self.assertRegex(table, "(?m)^2 certificates, CRLs, requests and messages, 2 decoded; ")

    def test_certificates(self):
        folder = by_openssl("crl2pkcs7 -nocrl -certfile root.pem -certfile user.pem")
        self.assertEqual(good("p7 show --certs - -", folder).encode(),
                         octets_of("root.pem") + octets_of("user.pem"))
        made = shown(run("certtool --p7-generate --load-certificate user.pem"))
        self.assertEqual([c["serial"] for c in made["certificates"]], ["8a"])
        self.assertEqual(made["signers"], [])
        self.bad("zacert: expected a certificate in the message, found none\n", "p7 show -",
                 signed("-nocerts"), out="--certs none")

    def test_refused(self):
        octets = signed("-nodetach")
        streamed = signed("-nodetach -stream")
        rows = {
            "the file is empty": b"",
            "a PKCS#7 message: a signer is told by key identifier": signed("-keyid"),
            "a PKCS#7 message: a recipient is told by key identifier": encrypted("-keyid"),
            "a PKCS#7 message: a recipient gets the key by other means": encrypted(to="ec.pem"),
            "a PKCS#7 message: the content type authEnvelopedData is none of its own":
                encrypted(cipher="aes-128-gcm"),
            f"a PKCS#7 message of {len(octets)} octets, found {len(octets) - 1}: ": octets[:-1],
            "a PKCS#7 message: an indefinite length is broken": streamed[:-1],
            "an indefinite length is broken ": streamed + b"\0",
            "a PKCS#7 message: a tag is not the one expected ": b"-----BEGIN PKCS7-----\nMQA=\n"
                                                                b"-----END PKCS7-----\n",
            "a PKCS#7 message, found a certificate": der_of("user"),
        }
        for reason, octets in rows.items():
            with self.subTest(reason):
                self.bad(reason, "p7 show " + file("bad", octets), out="")

    def test_damage(self):
        """Every truncation is refused with one line, and so is or is shown every changed octet."""
        for octets in (signed("-nocerts -nodetach"), encrypted("-stream")):
            cut = [file(f"cut{i}", octets[:i]) for i in range(len(octets))]
            status, output, problems = tool("p7 show " + " ".join(cut))
            self.assertEqual((status, output, problems.count("\n")), (1, "", len(cut)))
            changed = [file(f"changed{i}", octets[:i] + bytes([o ^ 0x81]) + octets[i + 1:])
                       for i, o in enumerate(octets)]
            status, output, problems = tool("p7 show " + " ".join(changed))
            known = len(re.findall("^PKCS#7 message 1 of ", output, re.M))
            self.assertEqual((status, known + problems.count("\n")), (1, len(changed)))


if __name__ == "__main__":
    unittest.main(verbosity=2)
