"""The command `p7 verify`: what others sign verifies, and nothing that is not signed does."""

import hashlib
import itertools
import unittest

from support.lists import tlv
from support.messages import (CONTENT, CONTENT_TYPE, DIGEST, EC, ENVELOPED, GOOD_DIGEST,
                              GOOD_TYPE, MessageTest, attribute, by_hand, by_openssl, der_of,
                              inside, signed, tool)
from support.peers import FOLDER, certificate, file, octets_of, run

CA = "--ca root.pem"
OTHER = tlv(4, hashlib.sha256(b"other").digest())
SHA1 = bytes.fromhex("300906052b0e03021a0500")
MD5 = bytes.fromhex("300c06082a864886f70d02050500")
SM2_SM3 = bytes.fromhex("300a06082a811ccf55018375")


def verify(octets, arguments=CA):
    return tool(f"p7 verify --out out {arguments} -", octets)


class Verified(MessageTest):
    def assert_good(self, octets, arguments=CA, content=CONTENT, lines=()):
        status, output, problems = verify(octets, arguments)
        self.assertEqual((status, problems, "FAILED" in output), (0, "", False), output)
        self.assertTrue(output.endswith("standard input: good\n"), output)
        self.assertEqual(octets_of("out"), content)
        (FOLDER / "out").unlink()
        for line in lines:
            self.assertRegex(output, f"(?m)^  (ok|note) +{line}")

    def assert_bad(self, octets, reason, arguments=CA, expected=1):
        """One failed check is enough, and there is no content then."""
        status, output, problems = verify(octets, arguments)
        self.assertEqual(status, expected, output + problems)
        self.assertFalse((FOLDER / "out").exists())
        if problems:
            self.assertRegex(problems, f"\\Azacert: .*{reason}.*\n\\Z")
        else:
            self.assertRegex(output, f"(?m)^  FAILED +(?:{reason})")
            self.assertTrue(output.endswith("standard input: NOT GOOD\n"))

    def test_what_others_sign(self):
        large = CONTENT * 4500
        for form, command, options in itertools.product(
                ("DER", "PEM"), ("cms", "smime"),
                ("", "-stream", "-noattr", "-md sha512", "-signer second.pem -inkey second.key")):
            with self.subTest(f"{form} {command} {options}"):
                self.assert_good(signed(f"-nodetach {options}", form=form, command=command))
        self.assert_good(signed("-nodetach -stream", content=large), content=large)
        self.assert_good(signed("-nodetach", content=b""), content=b"")
        self.assert_good(signed("-nodetach -econtent_type 1.2.3.4"),
                         lines=["content type: 1.2.3.4, as the attributes say"])
        self.assert_good(signed("-nodetach -nocerts"), f"{CA} --cert user.pem",
                         lines=["certificate: CN=user, given by --cert", "signing time: 20"])
        self.assert_good(signed("-nodetach -md sha1"), "--no-path",
                         lines=["SHA-1: ", "path: not checked"])
        self.assert_good(run("certtool --p7-sign --load-privkey user.key --load-certificate "
                             "user.pem --outder --infile content"))

    def test_detached(self):
        beside = f"{CA} --content "
        for options in ("", "-noattr"):
            octets = signed(options)
            self.assert_good(octets, beside + "content")
            self.assert_bad(octets, "(message digest: is not|signature: .* does not verify)",
                            beside + file("wrong", CONTENT[:-1]))
            self.assert_bad(octets, "expected the content: it is not in the message")
        self.assert_bad(signed("-nodetach"), "--content names one", beside + "content")
        nothing = beside + file("nothing", b"")
        self.assert_good(signed(content=b""), nothing, content=b"")
        self.assert_bad(signed(), "message digest: is not", nothing)

    def test_sm2(self):
        """The signature of the digest slot's SM2 is over content and identity alone."""
        signature = by_openssl("pkeyutl -sign -rawin -digest sm3 -pkeyopt "
                                 "distid:1234567812345678 -inkey sm2.key -in content")
        octets = by_hand(None, digest=SM2_SM3, algorithm=SM2_SM3, signature=signature,
                              certificates=["sm2"])
        self.assert_good(octets, lines=["signature: EC SM2 with SM3, over the content"])
        self.assert_bad(octets.replace(b"what", b"that", 1), "signature: EC SM2 .* does not verify")

    def test_attributes(self):
        """Every signature is good; what it covers is not."""
        self.assert_good(by_hand([GOOD_TYPE, GOOD_DIGEST]))
        certificate("twin", f"{EC} -subj /CN=root -set_serial 138")  # the same issuer and serial
        self.assert_good(by_hand([GOOD_TYPE, GOOD_DIGEST], certificates=["twin", "user"]))
        digest = "message digest: "
        rows = [
            ([GOOD_TYPE], digest + "is missing"),
            ([GOOD_DIGEST], "content type: is missing"),
            ([GOOD_TYPE, GOOD_DIGEST, GOOD_DIGEST], digest + "is there twice"),
            ([GOOD_TYPE, attribute(DIGEST, OTHER), GOOD_DIGEST], digest + "is there twice"),
            ([GOOD_TYPE, attribute(DIGEST, OTHER)], digest + "is not that of the content"),
            ([GOOD_TYPE, attribute(DIGEST, inside(GOOD_DIGEST)[1][1], OTHER)],
             digest + "the attribute has not one value"),
            ([GOOD_TYPE, attribute(DIGEST)], digest + "the attribute has not one value"),
            ([GOOD_TYPE, GOOD_TYPE, GOOD_DIGEST], "content type: is there twice"),
            ([attribute(CONTENT_TYPE, ENVELOPED), GOOD_DIGEST], "content type: data, but "),
        ]
        for attributes, reason in rows:
            with self.subTest(reason):
                self.assert_bad(by_hand(attributes), reason)
        self.assert_bad(by_hand([GOOD_TYPE, GOOD_DIGEST], content=b"swapped"),
                        digest + "is not that of the content")
        self.assert_bad(by_hand([GOOD_TYPE, GOOD_DIGEST], certificates=["twin"]),
                        "signature: .* cannot be verified")
        # The attributes of one message as the content of another.
        octets = tlv(0x31, GOOD_TYPE + GOOD_DIGEST)
        signature = by_openssl("dgst -sha256 -sign user.key", octets)
        self.assert_bad(by_hand(None, content=octets, signature=signature),
                        "content: reads as the attributes of a signer")
        self.assert_bad(by_hand(None, kind=ENVELOPED), "content type: envelopedData, which")

    def test_refused(self):
        good = signed("-nodetach")
        pss = "-keyopt rsa_padding_mode:pss"
        rows = [
            (good, "either --ca or --no-path", "--cert user.pem"),
            (good, "trust: there is no certificate of its issuer", "--ca ec.pem"),
            (good, "validity: expired", f"{CA} --at 2037-01-01"),
            (good, "purpose of CN=user: may not|key usage: has none", f"{CA} --purpose ca"),
            (signed("-nodetach -nocerts"), "certificate: neither in the message", CA),
            (signed("-nodetach", signer="silent"), "key usage: has none of digitalSig", CA),
            (signed("-nodetach", signer="ec"), "signature: ecdsa.* cannot be verified", CA),
            (signed("-nodetach " + pss), "signature: RSA-PSS .* cannot be verified", CA),
            (signed("-nodetach -md md5"), "signature: MD5: others can make", CA),
            (signed("-nodetach -signer ec.pem -inkey ec.key"), "signature: ecdsa", CA),
            (good.replace(b"what", b"that", 1), "message digest: is not that of the content", CA),
            (good[:-1] + bytes([good[-1] ^ 1]), "signature: ", CA),
            (by_hand(None, algorithm=SHA1), "signature: .* cannot be verified", CA),
            (by_openssl("crl2pkcs7 -nocrl -certfile user.pem"), "there is no signer", CA),
            (by_openssl("cms -data_create -binary -outform DER", CONTENT), "found data", CA),
            (der_of("user"), "expected a PKCS#7 message", CA),
            (b"", "the file is empty", CA),
        ]
        for octets, reason, arguments in rows:
            with self.subTest(reason):
                self.assert_bad(octets, reason, arguments, 1 if "--ca" in arguments else 2)

    def test_damage(self):
        """Whatever octet is changed: what is found good is the content that was signed."""
        octets = signed("-nodetach -nocerts -noattr")
        for i in range(0, len(octets), 5):
            self.assertEqual(verify(octets[:i], f"{CA} --cert user.pem")[0], 1)
            changed = octets[:i] + bytes([octets[i] ^ 0x21]) + octets[i + 1:]
            if verify(changed, f"{CA} --cert user.pem")[0] == 0:
                self.assertEqual(octets_of("out"), CONTENT)
                (FOLDER / "out").unlink()

    def test_damaged_certificate(self):
        octets = signed("-nodetach")
        start = octets.index(der_of("user"))
        for i in range(start, start + len(der_of("user")), 29):
            changed = octets[:i] + bytes([octets[i] ^ 0x21]) + octets[i + 1:]
            self.assertEqual(verify(changed)[0], 1, i - start)


if __name__ == "__main__":
    unittest.main(verbosity=2)
